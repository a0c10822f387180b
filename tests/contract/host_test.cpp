#include "platform/devices.h"
#include "platform/host.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <array>
#include <bit>
#include <chrono>
#include <cwchar>
#include <gtest/gtest.h>

namespace {

using contract::Fails;
using contract::Succeeds;
using contract::Try;

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

} // namespace
