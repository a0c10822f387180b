#include "platform/handles.h"

#include "platform/error.h"
#include "platform/posix/handles.h"

BOOL CloseHandle(HANDLE handle) {
  if (platform::CloseDriveHandle(reinterpret_cast<std::uintptr_t>(handle))) {
    return TRUE;
  }
  SetLastError(ERROR_INVALID_HANDLE);
  return FALSE;
}
