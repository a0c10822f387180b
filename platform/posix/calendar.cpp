#include "platform/posix/calendar.h"

#include <chrono>

namespace platform {

namespace {

using FileTicks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

constexpr std::chrono::sys_days kFileTimeEpoch = std::chrono::January / 1 / 1601;
constexpr WORD kFirstYear = 1601;
constexpr WORD kLastYear = 30827;

std::chrono::year_month_day CalendarDay(const SYSTEMTIME& date) {
  return {std::chrono::year(date.wYear), std::chrono::month(date.wMonth), std::chrono::day(date.wDay)};
}

} // namespace

SYSTEMTIME SystemTimeOf(std::uint64_t fileTime) {
  const FileTicks sinceEpoch(static_cast<std::int64_t>(fileTime));
  const auto wholeDays = std::chrono::floor<std::chrono::days>(sinceEpoch);
  const std::chrono::sys_days day = kFileTimeEpoch + wholeDays;
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::milliseconds>(sinceEpoch - wholeDays));
  SYSTEMTIME result = {};
  result.wYear = static_cast<WORD>(static_cast<int>(date.year()));
  result.wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  result.wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  result.wDayOfWeek = static_cast<WORD>(std::chrono::weekday(day).c_encoding());
  result.wHour = static_cast<WORD>(time.hours().count());
  result.wMinute = static_cast<WORD>(time.minutes().count());
  result.wSecond = static_cast<WORD>(time.seconds().count());
  result.wMilliseconds = static_cast<WORD>(time.subseconds().count());
  return result;
}

bool IsCalendarDate(const SYSTEMTIME& date) {
  return date.wYear >= kFirstYear && date.wYear <= kLastYear && date.wMonth <= 12 && date.wDay <= 31 &&
         CalendarDay(date).ok();
}

unsigned DayOfWeek(const SYSTEMTIME& date) {
  return std::chrono::weekday(std::chrono::sys_days(CalendarDay(date))).c_encoding();
}

} // namespace platform
