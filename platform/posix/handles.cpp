#include "platform/handles.h"

#include "platform/error.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/handles.h"

BOOL CloseHandle(HANDLE handle) {
  const platform::ErrnoGuard guard;
  const auto number = reinterpret_cast<std::uintptr_t>(handle);
  if (platform::CloseDriveHandle(number) || platform::CloseThreadHandle(number)) {
    return TRUE;
  }
  const DWORD code = platform::CloseFileHandle(number).value_or(ERROR_INVALID_HANDLE);
  if (code != ERROR_SUCCESS) {
    SetLastError(code);
    return FALSE;
  }
  return TRUE;
}
