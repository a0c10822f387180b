#include "platform/error.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <atomic>
#include <cwchar>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

using contract::kUntouchedError;
using contract::LastErrorOnly;
using contract::SetMarkers;

DWORD Format(DWORD code, wchar_t* buffer, DWORD size) {
  SetMarkers();
  return FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, buffer, size, nullptr);
}

TEST(LastError, EachThreadHasItsOwn) {
  std::atomic<bool> go = false;
  std::atomic<bool> done = false;
  std::thread other([&go, &done] {
    while (!go) {
    }
    SetLastError(ERROR_ACCESS_DENIED);
    done = true;
  });
  SetLastError(ERROR_MORE_DATA);
  go = true;
  while (!done) { // without a system call, which might set the last error itself
  }
  EXPECT_EQ(DWORD{ERROR_MORE_DATA}, GetLastError());
  other.join();
}

TEST(SystemMessage, CodesInUseHaveATextThatEndsTheLine) {
  constexpr DWORD kCodes[] = {0,   1,   2,   3,   5,   6,   8,   13,  14,  18,  19,   32,   33,   50,   80,   82,  87,
                              112, 122, 123, 145, 183, 206, 234, 259, 267, 995, 1008, 1053, 1060, 1113, 1450, 1455};
  for (const DWORD code : kCodes) {
    wchar_t buffer[1024] = {};
    const DWORD length = Format(code, buffer, 1024);
    const std::wstring text(buffer);
    EXPECT_EQ(kUntouchedError, LastErrorOnly()) << code;
    EXPECT_EQ(text.size(), length) << code;
    EXPECT_GT(length, 2U) << code;
    EXPECT_EQ(L"\r\n", text.substr(text.size() < 2 ? 0 : text.size() - 2)) << code;
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
      {ERROR_SUCCESS, L"The operation completed successfully.\r\n"},
      {ERROR_FILE_NOT_FOUND, L"The system cannot find the file specified.\r\n"},
      {ERROR_PATH_NOT_FOUND, L"The system cannot find the path specified.\r\n"},
      {ERROR_ACCESS_DENIED, L"Access is denied.\r\n"},
      {ERROR_INVALID_HANDLE, L"The handle is invalid.\r\n"},
      {ERROR_INVALID_PARAMETER, L"The parameter is incorrect.\r\n"},
      {ERROR_ALREADY_EXISTS, L"Cannot create a file when that file already exists.\r\n"},
      {ERROR_MORE_DATA, L"More data is available.\r\n"},
  };
  for (const auto& row : rows) {
    wchar_t buffer[1024] = {};
    Format(row.code, buffer, 1024);
    EXPECT_EQ(std::wstring(row.text), buffer);
  }
}

TEST(SystemMessage, Failures) {
  wchar_t buffer[1024] = {};
  const DWORD length = Format(ERROR_FILE_NOT_FOUND, buffer, 1024);
  struct {
    DWORD code;
    DWORD size;
    DWORD result;
    DWORD lastError;
  } const rows[] = {
      {ERROR_FILE_NOT_FOUND, length + 1, length, kUntouchedError},
      {ERROR_FILE_NOT_FOUND, length, 0, ERROR_INSUFFICIENT_BUFFER},
      {ERROR_FILE_NOT_FOUND, 0, 0, ERROR_INSUFFICIENT_BUFFER},
      {0x80041001, 1024, 0, ERROR_MR_MID_NOT_FOUND},
      {0x12345678, 1024, 0, ERROR_MR_MID_NOT_FOUND},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.result, Format(row.code, buffer, row.size)) << row.code << " into " << row.size;
    EXPECT_EQ(row.lastError, LastErrorOnly()) << row.code << " into " << row.size;
  }
  wchar_t sameError[1024] = {};
  Format(ERROR_ACCESS_DENIED, buffer, 1024);
  Format(0x80070005, sameError, 1024); // the HRESULT that wraps the error
  EXPECT_EQ(std::wstring(buffer), sameError);
  SetMarkers();
  EXPECT_EQ(0U, FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 2, 0, nullptr, 10, nullptr));
  EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, LastErrorOnly());
}

} // namespace
