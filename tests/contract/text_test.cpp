#include "platform/text.h"
#include "tests/contract/support/markers.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace {

using contract::Fails;
using contract::Left;
using contract::Succeeds;
using contract::Try;

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

TEST(Text, LengthsAndCapacities) {
  constexpr UINT kNoCodePage = 39999;
  struct {
    UINT codePage;
    const char* source; ///< none for no source at all
    int length;
    int capacity;
    Left left;
    const char* written;
  } const rows[] = {
      {CP_ACP, "abc", -1, 8, Succeeds(4), "abc"},  // with the terminator
      {CP_ACP, "abc", -1, 4, Succeeds(4), "abc"},  // exactly filled
      {CP_ACP, "abc", 3, 8, Succeeds(3), "abc##"}, // without it
      {CP_ACP, "abc", -1, 0, Succeeds(4), "#"},    // measured
      {CP_ACP, "", -1, 8, Succeeds(1), ""},
      {CP_ACP, "abc", -7, 8, Succeeds(4), "abc"}, // every negative length means "to the terminator"
      {CP_ACP, "abc", -1, 3, Fails(ERROR_INSUFFICIENT_BUFFER), "abc#"},
      {CP_ACP, "abc", 3, 2, Fails(ERROR_INSUFFICIENT_BUFFER), "ab#"},
      {CP_ACP, "abc", 0, 8, Fails(ERROR_INVALID_PARAMETER), "#"},
      {CP_ACP, "abc", -1, -1, Fails(ERROR_INVALID_PARAMETER), "#"},
      {CP_ACP, nullptr, -1, 8, Fails(ERROR_INVALID_PARAMETER), "#"},
      {kNoCodePage, "abc", -1, 8, Fails(ERROR_INVALID_PARAMETER), "#"},
  };
  for (const auto& row : rows) { // both directions follow the same rules
    SCOPED_TRACE(&row - rows);
    const std::string written(row.written);
    const std::string source(row.source == nullptr ? "" : row.source);
    const std::wstring wideSource(source.begin(), source.end());
    std::wstring wide(10, L'#');
    std::string narrow(10, '#');
    EXPECT_EQ(row.left, Try([&] {
                return MultiByteToWideChar(row.codePage, 0, row.source, row.length, wide.data(), row.capacity);
              }));
    EXPECT_TRUE(wide.starts_with(std::wstring(written.begin(), written.end())));
    EXPECT_EQ(row.left, Try([&] {
                return WideCharToMultiByte(row.codePage, 0, row.source == nullptr ? nullptr : wideSource.c_str(),
                                           row.length, narrow.data(), row.capacity, nullptr, nullptr);
              }));
    EXPECT_TRUE(narrow.starts_with(written));
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

TEST(Text, TheDefaultLocaleHasOneByteUpToU00FF) {
  constexpr auto kFails = static_cast<std::size_t>(-1);
  struct {
    const wchar_t* text;
    std::size_t capacity; ///< 0 measures without a target
    std::size_t result;
    const char* written;
  } const rows[] = {
      {L"abc", 8, 3, "abc"},
      {L"abc", 0, 3, ""},
      {L"abc", 3, 3, "abc#"},
      {L"abc", 2, 2, "ab#"},
      {L"", 8, 0, ""},
      {L"\xE9\xFF\x80", 8, 3, "\xE9\xFF\x80"},
      {L"a\x0100", 8, kFails, ""},
      {L"a\x20AC", 0, kFails, ""},
      {L"a\x20AC", 1, 1, "a#"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    std::string target = row.capacity == 0 ? std::string() : std::string(10, '#');
    errno = contract::kUntouchedErrno;
    EXPECT_EQ(row.result,
              platform::DefaultLocaleWcstombs(row.capacity == 0 ? nullptr : target.data(), row.text, row.capacity));
    EXPECT_EQ(row.result == kFails ? EILSEQ : contract::kUntouchedErrno, errno);
    EXPECT_TRUE(target.starts_with(row.written));
  }
}

} // namespace
