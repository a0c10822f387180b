#include "platform/error.h"
#include "platform/host.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <cwchar>
#include <gtest/gtest.h>
#include <string>

namespace {

using contract::kUntouchedError;
using contract::LastErrorOnly;
using contract::SetMarkers;

using Formatter = decltype(&GetTimeFormatW);

struct PictureRow {
  SYSTEMTIME time; ///< year, month, day of week (not looked at), day, hour, minute, second, milliseconds
  const wchar_t* picture;
  const wchar_t* text;
  DWORD flags = 0;
  bool wineDiffers = false;
};

constexpr SYSTEMTIME kMorning = {2026, 11, 4, 19, 4, 50, 9, 0};
constexpr SYSTEMTIME kEvening = {2026, 11, 4, 19, 21, 5, 54, 0};
constexpr SYSTEMTIME kMidnight = {2026, 11, 4, 19, 0, 0, 0, 0};
constexpr SYSTEMTIME kNoon = {2026, 11, 4, 19, 12, 0, 0, 0};

constexpr PictureRow kTimeRows[] = {
    {kMorning, L" HH':'mm':'ss ", L" 04:50:09 ", TIME_FORCE24HOURFORMAT},
    {kEvening, L" HH':'mm':'ss ", L" 21:05:54 ", TIME_FORCE24HOURFORMAT},
    {kMorning, L"H:m:s", L"4:50:9"},
    {kEvening, L"hh.mm.ss tt", L"09.05.54 PM"},
    {kMorning, L"h:mm t", L"4:50 A"},
    {kMidnight, L"h tt", L"12 AM"},
    {kNoon, L"h tt", L"12 PM"},
    {kEvening, L"hh:mm", L"21:05", TIME_FORCE24HOURFORMAT},
    {kMorning, L"HHHH", L"04"},
    {kMorning, L"'HH'", L"HH"},
    {kMorning, L"H 'o''clock'", L"4 o'clock"},
    {kMorning, L"H''''m", L"4'50"},
    {kMorning, L"H'to the end", L"4to the end"},
    {kMorning, L"'only text'", L"only text"},
};

constexpr PictureRow kDateRows[] = {
    {kMorning, L"ddd MMM dd", L"Thu Nov 19"},
    {kMorning, L"yyyy", L"2026"},
    {{2026, 3, 0, 7, 0, 0, 0, 0}, L"dddd, d MMMM yyyy", L"Saturday, 7 March 2026"}, // the day of the week is computed
    {{2026, 3, 0, 7, 0, 0, 0, 0}, L"M/d/yy", L"3/7/26"},
    {{2006, 3, 0, 7, 0, 0, 0, 0}, L"MM-dd-y", L"03-07-6", 0, true},
    {{1601, 1, 0, 1, 0, 0, 0, 0}, L"ddd yyyy", L"Mon 1601"},
    {{2000, 2, 0, 29, 0, 0, 0, 0}, L"ddd MMM d", L"Tue Feb 29"},
    {kMorning, L"'day' d", L"day 19"},
    {kMorning, L"d 'o''' M", L"19 o' 11"},
};

void CheckPicture(Formatter format, const PictureRow& row) {
  if (row.wineDiffers && contract::RunsUnderWine()) {
    return;
  }
  SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(row.picture)));
  const auto needed = static_cast<int>(std::wcslen(row.text) + 1);
  wchar_t text[256] = {};
  SetMarkers();
  EXPECT_EQ(needed, format(LOCALE_SYSTEM_DEFAULT, row.flags, &row.time, row.picture, nullptr, 0));
  EXPECT_EQ(needed, format(LOCALE_SYSTEM_DEFAULT, row.flags, &row.time, row.picture, text, needed));
  EXPECT_EQ(kUntouchedError, LastErrorOnly());
  EXPECT_EQ(std::wstring(row.text), text);
  EXPECT_EQ(0, format(LOCALE_SYSTEM_DEFAULT, row.flags, &row.time, row.picture, text, needed - 1));
  EXPECT_EQ(DWORD{ERROR_INSUFFICIENT_BUFFER}, LastErrorOnly());
}

TEST(TimeText, Pictures) {
  for (const PictureRow& row : kTimeRows) {
    CheckPicture(GetTimeFormatW, row);
  }
}

TEST(DateText, Pictures) {
  for (const PictureRow& row : kDateRows) {
    CheckPicture(GetDateFormatW, row);
  }
}

void CheckRefused(Formatter format, const SYSTEMTIME& time, int capacity) {
  wchar_t text[256] = {};
  SetMarkers();
  EXPECT_EQ(0, format(LOCALE_SYSTEM_DEFAULT, 0, &time, L"'text'", capacity == 0 ? text : nullptr, capacity));
  EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, LastErrorOnly());
}

TEST(TimeText, RefusedArguments) {
  const SYSTEMTIME wrongTimes[] = {
      {2026, 11, 4, 19, 25, 0, 0, 0}, {2026, 11, 4, 19, 0, 60, 0, 0}, {2026, 11, 4, 19, 0, 0, 60, 0}};
  for (const SYSTEMTIME& time : wrongTimes) {
    CheckRefused(GetTimeFormatW, time, 0);
  }
  CheckRefused(GetTimeFormatW, kMorning, -1);
  CheckRefused(GetTimeFormatW, kMorning, 256); // a capacity without a buffer
}

TEST(DateText, RefusedArguments) {
  struct {
    SYSTEMTIME date;
    bool wineDiffers;
  } const rows[] = {
      {{1600, 12, 0, 31, 0, 0, 0, 0}, false}, {{2026, 0, 0, 1, 0, 0, 0, 0}, false},
      {{2026, 13, 0, 1, 0, 0, 0, 0}, false},  {{2026, 1, 0, 0, 0, 0, 0, 0}, false},
      {{2026, 1, 0, 32, 0, 0, 0, 0}, false},  {{2026, 2, 0, 29, 0, 0, 0, 0}, true},
      {{30828, 9, 0, 14, 0, 0, 0, 0}, true},
  };
  for (const auto& [date, wineDiffers] : rows) {
    SCOPED_TRACE(testing::Message() << date.wYear << '-' << date.wMonth << '-' << date.wDay);
    if (!wineDiffers || !contract::RunsUnderWine()) {
      CheckRefused(GetDateFormatW, date, 0);
    }
  }
  CheckRefused(GetDateFormatW, kMorning, -1);
  CheckRefused(GetDateFormatW, kMorning, 256);
}

TEST(DateText, WithoutADateItIsToday) {
  wchar_t year[8] = {};
  SYSTEMTIME before = {};
  SYSTEMTIME after = {};
  GetSystemTime(&before);
  EXPECT_EQ(5, GetDateFormatW(LOCALE_SYSTEM_DEFAULT, 0, nullptr, L"yyyy", year, 8));
  GetSystemTime(&after);
  EXPECT_TRUE(std::to_wstring(before.wYear) == year || std::to_wstring(after.wYear) == year);
}

} // namespace
