#include "platform/error.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <cwchar>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

using contract::Fails;
using contract::Left;
using contract::Succeeds;

TEST(LastError, EachThreadHasItsOwn) {
  SetLastError(ERROR_MORE_DATA);
  DWORD ofOther = ERROR_MORE_DATA;
  std::thread([&ofOther] { ofOther = GetLastError(); }).join();
  EXPECT_EQ(DWORD{ERROR_SUCCESS}, ofOther);
}

Left Format(DWORD code, wchar_t* buffer, DWORD size) {
  return contract::Try(
      [&] { return FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, size, nullptr); });
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

} // namespace
