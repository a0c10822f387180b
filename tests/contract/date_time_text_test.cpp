#include "platform/host.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <cwchar>
#include <gtest/gtest.h>
#include <string>

namespace {

using contract::Fails;
using contract::Succeeds;
using contract::Try;

using Formatter = decltype(&GetTimeFormatW);

struct PictureRow {
  Formatter format;
  SYSTEMTIME time; ///< year, month, day of week (not looked at), day, hour, minute, second, milliseconds
  const wchar_t* picture;
  const wchar_t* text;
  DWORD flags = 0;
  bool wineDiffers = false;
};

constexpr SYSTEMTIME kMorning = {2026, 11, 4, 19, 4, 50, 9, 0};
constexpr SYSTEMTIME kEvening = {2026, 11, 4, 19, 21, 5, 54, 0};

const PictureRow kRows[] = {
    {GetTimeFormatW, kMorning, L" HH':'mm':'ss ", L" 04:50:09 ", TIME_FORCE24HOURFORMAT},
    {GetTimeFormatW, kEvening, L" HH':'mm':'ss ", L" 21:05:54 ", TIME_FORCE24HOURFORMAT},
    {GetTimeFormatW, kEvening, L"hh.mm.ss tt", L"09.05.54 PM"},
    {GetTimeFormatW, kMorning, L"h:mm t", L"4:50 A"},
    {GetTimeFormatW, {2026, 11, 4, 19, 0, 0, 0, 0}, L"h tt", L"12 AM"},
    {GetTimeFormatW, kMorning, L"H 'o''clock'", L"4 o'clock"},
    {GetTimeFormatW, kMorning, L"H''''m", L"4'50"},
    {GetTimeFormatW, kMorning, L"H'to the end", L"4to the end"},
    {GetDateFormatW, kMorning, L"ddd MMM dd", L"Thu Nov 19"},
    {GetDateFormatW, {2026, 3, 0, 7, 0, 0, 0, 0}, L"dddd, d MMMM yyyy", L"Saturday, 7 March 2026"}, // computes the day
    {GetDateFormatW, {2006, 3, 0, 7, 0, 0, 0, 0}, L"MM-dd-y", L"03-07-6", 0, true},
    {GetDateFormatW, {1601, 1, 0, 1, 0, 0, 0, 0}, L"ddd yyyy", L"Mon 1601"},
    {GetDateFormatW, {2000, 2, 0, 29, 0, 0, 0, 0}, L"ddd MMM d", L"Tue Feb 29"},
    {GetDateFormatW, kMorning, L"'day' d 'o''' M", L"day 19 o' 11"},
};

TEST(DateAndTimeText, Pictures) {
  for (const PictureRow& row : kRows) {
    if (row.wineDiffers && contract::RunsUnderWine()) {
      continue;
    }
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.picture)));
    wchar_t text[256] = {};
    const auto format = [&row](wchar_t* target, int capacity) {
      return Try(
          [&] { return row.format(LOCALE_SYSTEM_DEFAULT, row.flags, &row.time, row.picture, target, capacity); });
    };
    const auto needed = static_cast<int>(std::wcslen(row.text) + 1);
    EXPECT_EQ(Succeeds(needed), format(nullptr, 0));
    EXPECT_EQ(Succeeds(needed), format(text, needed));
    EXPECT_EQ(std::wstring(row.text), text);
    EXPECT_EQ(Fails(ERROR_INSUFFICIENT_BUFFER), format(text, needed - 1));
  }
}

TEST(DateAndTimeText, RefusedArguments) {
  struct {
    Formatter format;
    SYSTEMTIME time;
    int capacity; ///< without a buffer, unless 0
    bool wineDiffers;
  } const rows[] = {
      {GetTimeFormatW, {2026, 11, 4, 19, 25, 0, 0, 0}, 0, false},
      {GetTimeFormatW, {2026, 11, 4, 19, 0, 0, 60, 0}, 0, false},
      {GetTimeFormatW, kMorning, -1, false},
      {GetTimeFormatW, kMorning, 256, false},
      {GetDateFormatW, {1600, 12, 0, 31, 0, 0, 0, 0}, 0, false},
      {GetDateFormatW, {2026, 13, 0, 1, 0, 0, 0, 0}, 0, false},
      {GetDateFormatW, {2026, 1, 0, 32, 0, 0, 0, 0}, 0, false},
      {GetDateFormatW, {2026, 2, 0, 29, 0, 0, 0, 0}, 0, true},
      {GetDateFormatW, {30828, 9, 0, 14, 0, 0, 0, 0}, 0, true},
      {GetDateFormatW, kMorning, 256, false},
  };
  for (const auto& row : rows) {
    if (row.wineDiffers && contract::RunsUnderWine()) {
      continue;
    }
    wchar_t text[256] = {};
    EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER), Try([&] {
                return row.format(LOCALE_SYSTEM_DEFAULT, 0, &row.time, L"'text'", row.capacity == 0 ? text : nullptr,
                                  row.capacity);
              }))
        << &row - rows;
  }
}

} // namespace
