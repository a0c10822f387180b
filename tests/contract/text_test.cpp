#include "platform/error.h"
#include "platform/text.h"
#include "tests/contract/support/markers.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace {

using contract::kUntouchedError;
using contract::LastErrorOnly;
using contract::SetMarkers;

/// What the bytes 0x80 to 0x9F of the ANSI code page are as UTF-16 units.
constexpr std::array<unsigned, 32> kUnitsFrom0x80 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178,
};

TEST(Text, EveryByteOfTheAnsiCodePageGoesThereAndBack) {
  for (unsigned byte = 0; byte < 0x100; ++byte) {
    const auto narrow = static_cast<char>(byte);
    const unsigned unit = byte >= 0x80 && byte < 0xA0 ? kUnitsFrom0x80[byte - 0x80] : byte;
    WCHAR wide = 0;
    EXPECT_EQ(1, MultiByteToWideChar(CP_ACP, 0, &narrow, 1, &wide, 1));
    EXPECT_EQ(unit, static_cast<unsigned>(wide)) << "byte " << byte;
    char back = 0;
    BOOL usedDefault = TRUE;
    EXPECT_EQ(1, WideCharToMultiByte(CP_ACP, 0, &wide, 1, &back, 1, nullptr, &usedDefault));
    EXPECT_EQ(byte, static_cast<unsigned char>(back));
    EXPECT_EQ(FALSE, usedDefault) << "byte " << byte;
  }
}

/// One conversion of a source of `length` units into a buffer of `capacity`; both directions follow the same rules.
struct LengthRow {
  const char* source; ///< none for no source at all
  int length;
  int capacity;
  int result;
  DWORD lastError;
  const char* written;
};

constexpr LengthRow kLengthRows[] = {
    {"abc", -1, 8, 4, kUntouchedError, "abc"},  // with the terminator
    {"abc", -1, 4, 4, kUntouchedError, "abc"},  // exactly filled
    {"abc", 3, 8, 3, kUntouchedError, "abc##"}, // without it
    {"abc", -1, 0, 4, kUntouchedError, "#"},    // measured
    {"abc", 2, 0, 2, kUntouchedError, "#"},
    {"", -1, 8, 1, kUntouchedError, ""},
    {"abc", -7, 8, 4, kUntouchedError, "abc"}, // every negative length means "to the terminator"
    {"abc", -1, 3, 0, ERROR_INSUFFICIENT_BUFFER, "abc#"},
    {"abc", 3, 2, 0, ERROR_INSUFFICIENT_BUFFER, "ab#"},
    {"abc", 0, 8, 0, ERROR_INVALID_PARAMETER, "#"},
    {"abc", -1, -1, 0, ERROR_INVALID_PARAMETER, "#"},
    {nullptr, -1, 8, 0, ERROR_INVALID_PARAMETER, "#"},
};

template <class Char>
std::basic_string<Char> Widen(const char* text) {
  const std::string narrow(text);
  return {narrow.begin(), narrow.end()};
}

TEST(Text, LengthsAndCapacities) {
  for (const LengthRow& row : kLengthRows) {
    SCOPED_TRACE(testing::Message() << "length " << row.length << ", capacity " << row.capacity);
    const std::wstring wideSource = Widen<wchar_t>(row.source == nullptr ? "" : row.source);
    std::wstring wide(10, L'#');
    std::string narrow(10, '#');

    SetMarkers();
    EXPECT_EQ(row.result, MultiByteToWideChar(CP_ACP, 0, row.source, row.length, wide.data(), row.capacity));
    EXPECT_EQ(row.lastError, LastErrorOnly());
    EXPECT_EQ(0U, wide.find(Widen<wchar_t>(row.written)));

    SetMarkers();
    EXPECT_EQ(row.result, WideCharToMultiByte(CP_ACP, 0, row.source == nullptr ? nullptr : wideSource.c_str(),
                                              row.length, narrow.data(), row.capacity, nullptr, nullptr));
    EXPECT_EQ(row.lastError, LastErrorOnly());
    EXPECT_EQ(0U, narrow.find(row.written));
  }
}

TEST(Text, WhatHasNoByteIsSubstituted) {
  struct {
    std::wstring units;
    const char* defaultChar;
    const char* narrow;
    BOOL usedDefault;
  } const rows[] = {
      {L"a\x4E00z", nullptr, "a?z", TRUE},
      {L"a\x4E00z", "_", "a_z", TRUE},
      {{L'a', static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)}, nullptr, "a??", TRUE}, // a pair, one each
      {{L'a', static_cast<wchar_t>(0xDE00), L'z'}, nullptr, "a?z", TRUE},
      {L"\x20AC", "_", "\x80", FALSE},
  };
  for (const auto& row : rows) {
    char narrow[8] = {};
    BOOL usedDefault = !row.usedDefault;
    EXPECT_EQ(
        static_cast<int>(row.units.size() + 1),
        WideCharToMultiByte(CP_ACP, 0, row.units.c_str(), -1, narrow, sizeof(narrow), row.defaultChar, &usedDefault));
    EXPECT_STREQ(row.narrow, narrow);
    EXPECT_EQ(row.usedDefault, usedDefault) << row.narrow;
  }
}

TEST(Text, AnUnknownCodePageIsRefused) {
  constexpr UINT kNoCodePage = 39999;
  wchar_t wide[2] = {};
  SetMarkers();
  EXPECT_EQ(0, MultiByteToWideChar(kNoCodePage, 0, "a", -1, wide, 2));
  EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, LastErrorOnly());
  char narrow[2] = {};
  SetMarkers();
  EXPECT_EQ(0, WideCharToMultiByte(kNoCodePage, 0, L"a", -1, narrow, 2, nullptr, nullptr));
  EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, LastErrorOnly());
}

TEST(Text, TheDefaultLocaleHasOneByteUpToU00FF) {
  constexpr auto kFails = static_cast<std::size_t>(-1);
  struct {
    const wchar_t* text;
    std::size_t capacity; ///< 0 measures without a target
    std::size_t result;
    const char* written;
    int errorNumber;
  } const rows[] = {
      {L"abc", 8, 3, "abc", contract::kUntouchedErrno},
      {L"abc", 0, 3, "", contract::kUntouchedErrno},
      {L"abc", 3, 3, "abc#", contract::kUntouchedErrno}, // no room for the terminator
      {L"abc", 2, 2, "ab#", contract::kUntouchedErrno},
      {L"", 8, 0, "", contract::kUntouchedErrno},
      {L"\xE9\xFF\x80", 8, 3, "\xE9\xFF\x80", contract::kUntouchedErrno},
      {L"a\x0100", 8, kFails, nullptr, EILSEQ},
      {L"a\x20AC", 0, kFails, nullptr, EILSEQ},
      {L"a\x20AC", 1, 1, "a#", contract::kUntouchedErrno}, // never gets to the character without a byte
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << "capacity " << row.capacity << ", result " << row.result);
    std::string target = row.capacity == 0 ? std::string() : std::string(10, '#');
    errno = contract::kUntouchedErrno;
    EXPECT_EQ(row.result,
              platform::DefaultLocaleWcstombs(row.capacity == 0 ? nullptr : target.data(), row.text, row.capacity));
    EXPECT_EQ(row.errorNumber, errno);
    if (row.written != nullptr) {
      EXPECT_EQ(0U, target.find(row.written));
    }
  }
}

} // namespace
