#include "app/cli/console/error_text.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/errno_keeper.h"
#include "platform/error.h"
#include "wmi/trace_text.h"

#include <cerrno>
#include <cstring>

namespace korvex {

namespace {
char gRuntimeErrorText[80];
wchar_t gSystemErrorText[1024];
wchar_t gSystemErrorCodeText[16];
} // namespace

const char* RuntimeErrorText() {
  const ErrnoKeeper errnoKeeper;
  BoundedCopy(gRuntimeErrorText, sizeof(gRuntimeErrorText), std::strerror(errno));
  return gRuntimeErrorText;
}

const wchar_t* SystemErrorText(DWORD code) {
  const ErrnoKeeper errnoKeeper;
  const DWORD capacity = sizeof(gSystemErrorText) / sizeof(wchar_t);
  if (FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, gSystemErrorText, capacity, nullptr) != 0) {
    return gSystemErrorText;
  }
  BoundedWideFormat(gSystemErrorCodeText, sizeof(gSystemErrorCodeText), "0x%x", static_cast<unsigned>(code));
  return gSystemErrorCodeText;
}

std::string LastErrorText() {
  return NarrowText(SystemErrorText(GetLastError()));
}

} // namespace korvex
