#include "platform/devices.h"
#include "platform/host.h"
#include "platform/threads.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cwchar>
#include <gtest/gtest.h>
#include <string>
#include <thread>

// Errors and their texts, the computer's name, the clock, and the texts of dates and times.

namespace {

using contract::Fails;
using contract::Left;
using contract::Succeeds;
using contract::Try;

TEST(LastError, EachThreadHasItsOwn) {
  SetLastError(ERROR_MORE_DATA);
  DWORD ofOther = ERROR_MORE_DATA;
  std::thread([&ofOther] { ofOther = GetLastError(); }).join();
  EXPECT_EQ(DWORD{ERROR_SUCCESS}, ofOther);
}

Left Format(DWORD code, wchar_t* buffer, DWORD size) {
  return Try([&] { return FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, size, nullptr); });
}

TEST(SystemMessage, CodesInUseHaveATextThatEndsTheLine) {
  constexpr DWORD kCodes[] = {0,   1,   2,   3,   5,   6,   8,   13,  14,  18,  19,   32,   33,   50,   80,   82,  87,
                              112, 122, 123, 145, 183, 206, 234, 259, 267, 995, 1008, 1053, 1060, 1113, 1450, 1455};
  for (const DWORD code : kCodes) {
    wchar_t buffer[1024] = {};
    const Left left = Format(code, buffer, 1024);
    const std::wstring text(buffer);
    EXPECT_EQ(Succeeds(static_cast<int>(text.size())), left) << code;
    EXPECT_TRUE(text.size() > 2 && text.ends_with(L"\r\n")) << code;
  }
}

TEST(SystemMessage, Wording) {
  if (contract::RunsUnderWine()) {
    GTEST_SKIP() << "Wine words its messages differently";
  }
  struct {
    DWORD code;
    const wchar_t* text;
  } const rows[] = {
      {ERROR_FILE_NOT_FOUND, L"The system cannot find the file specified.\r\n"},
      {ERROR_ACCESS_DENIED, L"Access is denied.\r\n"},
      {ERROR_ALREADY_EXISTS, L"Cannot create a file when that file already exists.\r\n"},
      {0x80070005, L"Access is denied.\r\n"}, // the HRESULT that wraps the error
  };
  for (const auto& row : rows) {
    wchar_t buffer[1024] = {};
    Format(row.code, buffer, 1024);
    EXPECT_EQ(std::wstring(row.text), buffer);
  }
}

TEST(SystemMessage, Failures) {
  wchar_t buffer[1024] = {};
  const int length = Format(ERROR_FILE_NOT_FOUND, buffer, 1024).result;
  const auto size = static_cast<DWORD>(length);
  EXPECT_EQ(Succeeds(length), Format(ERROR_FILE_NOT_FOUND, buffer, size + 1));
  EXPECT_EQ(Fails(ERROR_INSUFFICIENT_BUFFER), Format(ERROR_FILE_NOT_FOUND, buffer, size));
  EXPECT_EQ(Fails(ERROR_INSUFFICIENT_BUFFER), Format(ERROR_FILE_NOT_FOUND, buffer, 0));
  EXPECT_EQ(Fails(ERROR_MR_MID_NOT_FOUND), Format(0x80041001, buffer, 1024));
  EXPECT_EQ(Fails(ERROR_MR_MID_NOT_FOUND), Format(0x12345678, buffer, 1024));
  EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER), Format(ERROR_FILE_NOT_FOUND, nullptr, 10));
}

TEST(ComputerName, SizesAndErrors) {
  for (const COMPUTER_NAME_FORMAT form : {ComputerNameDnsHostname, ComputerNameDnsDomain}) {
    SCOPED_TRACE(static_cast<int>(form));
    wchar_t name[256] = {};
    DWORD size = 256;
    const auto ask = [&](wchar_t* target, DWORD capacity) {
      size = capacity;
      return Try([&] { return GetComputerNameExW(form, target, &size) != FALSE; });
    };
    ASSERT_EQ(Succeeds(), ask(name, 256));
    const auto length = static_cast<DWORD>(std::wcslen(name));
    EXPECT_EQ(length, size);
    EXPECT_EQ(Fails(ERROR_MORE_DATA), ask(nullptr, 0)); // measures, with the terminator
    EXPECT_EQ(length + 1, size);
    EXPECT_EQ(Fails(ERROR_MORE_DATA), ask(name, length));
    EXPECT_EQ(length + 1, size);
    EXPECT_EQ(Succeeds(), ask(name, length + 1));
    EXPECT_EQ(length, size);
  }
  wchar_t name[256] = {};
  DWORD size = 256;
  EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER),
            Try([&] { return GetComputerNameExW(static_cast<COMPUTER_NAME_FORMAT>(8), name, &size); }));
}

TEST(FileTime, FollowsTheGregorianCalendar) {
  struct {
    std::uint64_t fileTime;
    SYSTEMTIME date; ///< year, month, day of week, day, hour, minute, second, milliseconds
  } constexpr kRows[] = {
      {0, {1601, 1, 1, 1, 0, 0, 0, 0}},
      {9999, {1601, 1, 1, 1, 0, 0, 0, 0}}, // below a millisecond
      {10000, {1601, 1, 1, 1, 0, 0, 0, 1}},
      {94405823990000000, {1900, 2, 3, 28, 23, 59, 59, 0}}, // 1900 has no leap day
      {94405824000000000, {1900, 3, 4, 1, 0, 0, 0, 0}},
      {116444736000000000, {1970, 1, 4, 1, 0, 0, 0, 0}},
      {125962560000000000, {2000, 2, 2, 29, 0, 0, 0, 0}},
      {159394408950000000, {2106, 2, 0, 7, 6, 28, 15, 0}}, // the last second of 32 bits
      {0x7FFFFFFFFFFFFFFF, {30828, 9, 4, 14, 2, 48, 5, 477}},
  };
  using Numbers = std::array<WORD, 8>;
  SYSTEMTIME date = {};
  for (const auto& row : kRows) {
    const FILETIME fileTime = {static_cast<DWORD>(row.fileTime), static_cast<DWORD>(row.fileTime >> 32U)};
    ASSERT_EQ(Succeeds(), Try([&] { return FileTimeToSystemTime(&fileTime, &date) != FALSE; }));
    EXPECT_EQ(std::bit_cast<Numbers>(row.date), std::bit_cast<Numbers>(date)) << row.fileTime;
  }
  for (const DWORD high : {0x80000000U, 0xFFFFFFFFU}) {
    const FILETIME fileTime = {0, high};
    EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER), Try([&] { return FileTimeToSystemTime(&fileTime, &date); }));
  }
}

TEST(Clock, TellsUtcAndSleepTakesItsTime) {
  using namespace std::chrono;
  const auto before = system_clock::now();
  SYSTEMTIME now = {};
  GetSystemTime(&now);
  const auto told = sys_days(year(now.wYear) / month(now.wMonth) / day(now.wDay)) + hours(now.wHour) +
                    minutes(now.wMinute) + seconds(now.wSecond);
  EXPECT_LE(abs(told - before), seconds(2));
  const auto asleep = steady_clock::now();
  Sleep(30);
  EXPECT_GE(steady_clock::now() - asleep, milliseconds(25));
}

TEST(Thread, RunsWithItsArgumentAndWithoutItsHandle) {
  std::atomic<int> state = 1;
  const LPTHREAD_START_ROUTINE start = [](LPVOID argument) -> DWORD {
    Sleep(1);
    SetLastError(contract::kUntouchedError + 1); // of this thread only
    ++*static_cast<std::atomic<int>*>(argument);
    return 0;
  };
  HANDLE thread = nullptr;
  EXPECT_EQ(Succeeds(), Try([&] { return (thread = CreateThread(nullptr, 0, start, &state, 0, nullptr)) != nullptr; }));
  EXPECT_EQ(Succeeds(), Try([&] { return CloseHandle(thread); }));
  EXPECT_EQ(Fails(ERROR_INVALID_HANDLE), Try([&] { return CloseHandle(thread); }));
  for (int waits = 0; state == 1 && waits < 10'000; ++waits) {
    Sleep(1);
  }
  EXPECT_EQ(2, state);
}

TEST(DeviceTree, TheRootCanBeLocated) {
  if (contract::RunsUnderWine()) {
    GTEST_SKIP() << "Wine has no device tree: it gives CR_FAILURE";
  }
  DEVINST root = 0;
  EXPECT_EQ(CONFIGRET{CR_SUCCESS}, CM_Locate_DevNode_ExW(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL, nullptr));
  EXPECT_NE(0U, root);
  EXPECT_EQ(CONFIGRET{CR_INVALID_POINTER}, CM_Locate_DevNode_ExW(nullptr, nullptr, CM_LOCATE_DEVNODE_NORMAL, nullptr));
  EXPECT_EQ(CONFIGRET{CR_INVALID_FLAG}, CM_Locate_DevNode_ExW(&root, nullptr, 0x10000000, nullptr));
  EXPECT_EQ(CONFIGRET{CR_INVALID_FLAG}, CM_Reenumerate_DevNode_Ex(root, 0x10000000, nullptr));
}

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
  const auto format = [](Formatter formatter, const SYSTEMTIME& time, int capacity) {
    wchar_t text[256] = {};
    wchar_t* target = capacity == 0 ? text : nullptr;
    return Try([&] { return formatter(LOCALE_SYSTEM_DEFAULT, 0, &time, L"'text'", target, capacity); });
  };
  for (const SYSTEMTIME& time : {SYSTEMTIME{2026, 11, 4, 19, 25, 0, 0, 0}, SYSTEMTIME{2026, 11, 4, 19, 0, 60, 0, 0}}) {
    EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER), format(GetTimeFormatW, time, 0));
  }
  const std::pair<SYSTEMTIME, bool> dates[] = {{{1600, 12, 0, 31, 0, 0, 0, 0}, false},
                                               {{2026, 13, 0, 1, 0, 0, 0, 0}, false},
                                               {{2026, 1, 0, 32, 0, 0, 0, 0}, false},
                                               {{2026, 2, 0, 29, 0, 0, 0, 0}, true}};
  for (const auto& [date, wineDiffers] : dates) {
    EXPECT_TRUE(format(GetDateFormatW, date, 0) == Fails(ERROR_INVALID_PARAMETER) ||
                (wineDiffers && contract::RunsUnderWine()));
  }
  EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER), format(GetTimeFormatW, kMorning, -1));
  EXPECT_EQ(Fails(ERROR_INVALID_PARAMETER), format(GetDateFormatW, kMorning, 256)); // without a buffer
}

} // namespace
