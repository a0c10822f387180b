#pragma once

#include "platform/host.h"

#include <cstdint>

namespace platform {

/// The last file time that the calendar reaches.
inline constexpr std::uint64_t kLastFileTime = 0x7FFFFFFFFFFFFFFF;

/// Date and time of a file time (100-nanosecond units since 1601-01-01) up to kLastFileTime.
SYSTEMTIME SystemTimeOf(std::uint64_t fileTime);

/// Whether year (1601 to 30827), month and day of `date` name a day of the calendar. The day of the week is not looked
/// at.
bool IsCalendarDate(const SYSTEMTIME& date);

/// The day of the week of a calendar date, 0 being Sunday.
unsigned DayOfWeek(const SYSTEMTIME& date);

} // namespace platform
