#include "app/report/time_text.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/trace.h"
#include "platform/error.h"
#include "platform/host.h"

#include <cstring>

namespace korvex {

namespace {

/// From 1601-01-01 to 1970-01-01, the origins of the system's file time and of the DSM's time stamps.
constexpr std::uint64_t kSecondsBetweenOrigins = 11644473600;
constexpr std::uint64_t kFileTimeUnitsPerSecond = 10000000;

} // namespace

void FormatTimeOfDay(std::uint32_t seconds, char* text, std::size_t capacity) {
  std::memset(text, 0, capacity);
  TracePrint("rawTime %x\n", seconds);
  const std::uint64_t units = (seconds + kSecondsBetweenOrigins) * kFileTimeUnitsPerSecond;
  FILETIME fileTime;
  fileTime.dwHighDateTime = static_cast<DWORD>(units >> 32);
  fileTime.dwLowDateTime = static_cast<DWORD>(units & 0xFFFFFFFF);
  TracePrint("dwHighDateTime 0x%x, dwLowDateTime 0x%x\n", static_cast<unsigned>(fileTime.dwHighDateTime),
             static_cast<unsigned>(fileTime.dwLowDateTime));
  SYSTEMTIME time;
  if (!FileTimeToSystemTime(&fileTime, &time)) {
    TracePrint("Unable to convert 0x%x to system time.  Error %d\n", seconds, static_cast<int>(GetLastError()));
    BoundedCopy(text, capacity, "Format error");
    return;
  }
  BoundedFormat(text, capacity, "%02u:%02u:%02u", static_cast<unsigned>(time.wHour),
                static_cast<unsigned>(time.wMinute), static_cast<unsigned>(time.wSecond));
}

} // namespace korvex
