#include "platform/host.h"

#include "platform/error.h"
#include "platform/posix/calendar.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/machine.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace {

/// The forms of the machine's name by number.
constexpr std::array<std::string_view, 8> kNameForms = {
    "ComputerNameNetBIOS",           "ComputerNameDnsHostname",
    "ComputerNameDnsDomain",         "ComputerNameDnsFullyQualified",
    "ComputerNamePhysicalNetBIOS",   "ComputerNamePhysicalDnsHostname",
    "ComputerNamePhysicalDnsDomain", "ComputerNamePhysicalDnsFullyQualified",
};

BOOL Fail(DWORD code) {
  SetLastError(code);
  return FALSE;
}

} // namespace

BOOL GetComputerNameExW(COMPUTER_NAME_FORMAT nameType, LPWSTR buffer, DWORD* size) {
  const auto form = static_cast<std::size_t>(nameType);
  if (form >= kNameForms.size() || size == nullptr || (buffer == nullptr && *size != 0)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (const auto fault = platform::FaultOf("GetComputerNameExW", kNameForms[form])) {
    return Fail(*fault);
  }
  const platform::ErrnoGuard guard;
  DWORD error = ERROR_INVALID_PARAMETER;
  const std::optional<std::wstring> name = platform::TheMachine().ComputerName(nameType, error);
  if (!name) {
    return Fail(error);
  }
  const auto length = static_cast<DWORD>(name->size());
  if (length >= *size) {
    *size = length + 1;
    return Fail(ERROR_MORE_DATA);
  }
  std::wmemcpy(buffer, name->c_str(), name->size() + 1);
  *size = length;
  return TRUE;
}

void GetSystemTime(SYSTEMTIME* now) {
  const platform::ErrnoGuard guard;
  *now = platform::SystemTimeOf(std::min(platform::TheMachine().Now(), platform::kLastFileTime));
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime) {
  if (const auto fault = platform::FaultOf("FileTimeToSystemTime")) {
    return Fail(*fault);
  }
  const std::uint64_t ticks = (std::uint64_t{fileTime->dwHighDateTime} << 32U) | fileTime->dwLowDateTime;
  if (ticks > platform::kLastFileTime) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  *systemTime = platform::SystemTimeOf(ticks);
  return TRUE;
}

void Sleep(DWORD milliseconds) {
  const platform::ErrnoGuard guard;
  platform::TheMachine().Wait(milliseconds);
}
