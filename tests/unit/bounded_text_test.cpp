#include "app/cli/console/bounded_text.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

constexpr std::size_t kTooMuch = 2147483648;

/// A buffer between two guards, filled with marks, so that what is written and where can be seen.
template <class Character>
struct Guarded {
  Character before = Character{'#'};
  Character text[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  Character after = Character{'#'};

  /// What stands before the terminator, which must be there.
  std::basic_string<Character> Terminated(std::size_t capacity) const {
    const std::basic_string<Character> all(text, std::size(text));
    EXPECT_LT(all.find(Character{}), capacity);
    return all.substr(0, all.find(Character{}));
  }
  bool IsUntouched() const {
    return std::basic_string<Character>(text, std::size(text)) == std::basic_string<Character>(8, '#') &&
           AreGuardsIntact();
  }
  bool AreGuardsIntact() const { return before == Character{'#'} && after == Character{'#'}; }
};

struct BoundCase {
  const char* text;
  std::size_t capacity;
  HRESULT result;
  const char* left;
};

// What a text leaves in a buffer of a capacity, whatever the operation that writes it from the beginning.
const BoundCase kBoundCases[] = {
    {"", 1, S_OK, ""},
    {"a", 1, STRSAFE_E_INSUFFICIENT_BUFFER, ""},
    {"seven77", 8, S_OK, "seven77"},
    {"eight888", 8, STRSAFE_E_INSUFFICIENT_BUFFER, "eight88"},
    {"four", 5, S_OK, "four"},
    {"four", 4, STRSAFE_E_INSUFFICIENT_BUFFER, "fou"},
    {"d\xE9j\xE0", 4, STRSAFE_E_INSUFFICIENT_BUFFER, "d\xE9j"},
};

std::wstring Widen(const std::string& text) {
  std::wstring wide;
  for (const char character : text) {
    wide.push_back(static_cast<unsigned char>(character));
  }
  return wide;
}

TEST(BoundedText, CutsWhatDoesNotFitAndTerminates) {
  for (const BoundCase& row : kBoundCases) {
    SCOPED_TRACE(row.text);
    Guarded<char> formatted;
    EXPECT_EQ(BoundedFormat(formatted.text, row.capacity, "%s", row.text), row.result);
    EXPECT_EQ(formatted.Terminated(row.capacity), row.left);
    EXPECT_TRUE(formatted.AreGuardsIntact());

    Guarded<char> copied;
    EXPECT_EQ(BoundedCopy(copied.text, row.capacity, row.text), row.result);
    EXPECT_EQ(copied.Terminated(row.capacity), row.left);
    EXPECT_TRUE(copied.AreGuardsIntact());

    Guarded<wchar_t> copiedWide;
    EXPECT_EQ(BoundedCopy(copiedWide.text, row.capacity, Widen(row.text).c_str()), row.result);
    EXPECT_EQ(copiedWide.Terminated(row.capacity), Widen(row.left));
    EXPECT_TRUE(copiedWide.AreGuardsIntact());

    Guarded<wchar_t> formattedWide;
    const std::size_t oddBytes = row.capacity * sizeof(wchar_t) + 1;
    EXPECT_EQ(BoundedWideFormat(formattedWide.text, oddBytes, "%s", row.text), row.result);
    EXPECT_EQ(formattedWide.Terminated(row.capacity), Widen(row.left));
    EXPECT_TRUE(formattedWide.AreGuardsIntact());
  }
}

TEST(BoundedText, RefusesUnusableCapacitiesAndWritesNothing) {
  for (const std::size_t capacity : {std::size_t{0}, kTooMuch, static_cast<std::size_t>(-1)}) {
    Guarded<char> narrow;
    EXPECT_EQ(BoundedFormat(narrow.text, capacity, "%d", 1), STRSAFE_E_INVALID_PARAMETER);
    EXPECT_EQ(BoundedCopy(narrow.text, capacity, "x"), STRSAFE_E_INVALID_PARAMETER);
    EXPECT_EQ(BoundedAppend(narrow.text, capacity, "x"), STRSAFE_E_INVALID_PARAMETER);
    EXPECT_TRUE(narrow.IsUntouched());
    Guarded<wchar_t> wide;
    EXPECT_EQ(BoundedCopy(wide.text, capacity, L"x"), STRSAFE_E_INVALID_PARAMETER);
    EXPECT_EQ(BoundedAppend(wide.text, capacity, L"x"), STRSAFE_E_INVALID_PARAMETER);
    EXPECT_TRUE(wide.IsUntouched());
  }
  Guarded<wchar_t> wide;
  EXPECT_EQ(BoundedWideFormat(wide.text, sizeof(wchar_t) - 1, "%d", 1), STRSAFE_E_INVALID_PARAMETER);
  EXPECT_EQ(BoundedWideFormat(wide.text, kTooMuch * sizeof(wchar_t), "%d", 1), STRSAFE_E_INVALID_PARAMETER);
  EXPECT_TRUE(wide.IsUntouched());
}

TEST(BoundedText, AppendsWhatFitsBehindTheText) {
  Guarded<char> narrow;
  std::strcpy(narrow.text, "abc");
  EXPECT_EQ(BoundedAppend(narrow.text, 8, "def"), S_OK);
  EXPECT_STREQ(narrow.text, "abcdef");
  EXPECT_EQ(BoundedAppend(narrow.text, 8, "ghi"), STRSAFE_E_INSUFFICIENT_BUFFER);
  EXPECT_STREQ(narrow.text, "abcdefg");
  // Without a terminator within the capacity there is no text to append to.
  EXPECT_EQ(BoundedAppend(narrow.text, 7, "x"), STRSAFE_E_INVALID_PARAMETER);
  EXPECT_STREQ(narrow.text, "abcdefg");
  EXPECT_TRUE(narrow.AreGuardsIntact());

  wchar_t wide[4] = L"a";
  EXPECT_EQ(BoundedAppend(wide, 4, L"bcd"), STRSAFE_E_INSUFFICIENT_BUFFER);
  EXPECT_STREQ(wide, L"abc");
}

TEST(BoundedText, MeasuresOnlyWithinTheCapacity) {
  struct Case {
    const char* text;
    std::size_t capacity;
    HRESULT result;
    std::size_t length;
  };
  const Case cases[] = {
      {"", 1, S_OK, 0},
      {"abc", 4, S_OK, 3},
      {"abc", 2147483647, S_OK, 3},
      {"abc", 3, STRSAFE_E_INVALID_PARAMETER, 0},
      {"abc", 0, STRSAFE_E_INVALID_PARAMETER, 0},
      {"abc", kTooMuch, STRSAFE_E_INVALID_PARAMETER, 0},
      {nullptr, 4, STRSAFE_E_INVALID_PARAMETER, 0},
  };
  for (const Case& row : cases) {
    std::size_t length = 77;
    EXPECT_EQ(BoundedLength(row.text, row.capacity, &length), row.result) << row.capacity;
    EXPECT_EQ(length, row.length) << row.capacity;
  }
  std::size_t length = 77;
  EXPECT_EQ(BoundedLength(L"wide", 5, &length), S_OK);
  EXPECT_EQ(length, 4U);
}

TEST(BoundedText, WidensFromTheAnsiCodePage) {
  wchar_t wide[16];
  EXPECT_EQ(BoundedWideFormat(wide, sizeof(wide), "%s=%x", "\x80uro", 0xABCU), S_OK);
  EXPECT_STREQ(wide, L"\x20ACuro=abc");
}

} // namespace
} // namespace korvex
