#include "platform/handles.h"

#include "platform/error.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/handles.h"

BOOL CloseHandle(HANDLE handle) {
  const platform::ErrnoGuard guard;
  const auto number = reinterpret_cast<std::uintptr_t>(handle);
  for (const auto close : {platform::CloseFileHandle, platform::CloseThreadHandle, platform::CloseDriveHandle}) {
    if (const auto code = close(number)) {
      if (*code != ERROR_SUCCESS) {
        SetLastError(*code);
      }
      return *code == ERROR_SUCCESS ? TRUE : FALSE;
    }
  }
  SetLastError(ERROR_INVALID_HANDLE);
  return FALSE;
}
