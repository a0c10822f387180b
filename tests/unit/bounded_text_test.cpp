#include "app/cli/console/bounded_text.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

constexpr std::size_t kTooMuch = 2147483648;

std::wstring Widen(const std::string& text) {
  std::wstring wide;
  for (const char character : text) {
    wide.push_back(static_cast<unsigned char>(character));
  }
  return wide;
}

/// What `write` leaves of a text in eight characters that held `before` and marks behind it: the text up to its
/// terminator. Nothing before them and nothing from `capacity` on may have been written.
template <class Character, class Write>
std::basic_string<Character> Left(const std::basic_string<Character>& before, std::size_t capacity, HRESULT result,
                                  Write write) {
  std::basic_string<Character> all(10, '#');
  all.replace(1, before.size(), before);
  const std::basic_string<Character> untouched = all;
  EXPECT_EQ(write(all.data() + 1), result);
  EXPECT_EQ(all[0], '#');
  const std::size_t end = capacity <= 8 ? 1 + capacity : 1;
  EXPECT_EQ(all.substr(end), untouched.substr(end));
  const std::size_t terminator = all.find(Character{}, 1);
  EXPECT_TRUE(terminator < end || end == 1);
  return all.substr(1, terminator - 1);
}

TEST(BoundedText, CutsWhatDoesNotFitAndTerminates) {
  constexpr HRESULT kCut = STRSAFE_E_INSUFFICIENT_BUFFER;
  const struct {
    std::string before; ///< what an append finds, terminator included; what the others overwrite
    std::string text;
    std::size_t capacity;
    HRESULT result;
    std::string left;
    std::string appended;
    HRESULT appendResult;
  } rows[] = {
      {std::string(1, '\0'), "", 1, S_OK, "", "", S_OK},
      {std::string(1, '\0'), "a", 1, kCut, "", "", kCut},
      {std::string("abc\0", 4), "seven77", 8, S_OK, "seven77", "abcseve", kCut},
      {std::string("abc\0", 4), "four", 8, S_OK, "four", "abcfour", S_OK},
      {std::string("a\0", 2), "eight888", 8, kCut, "eight88", "aeight8", kCut},
      {std::string("a\0", 2), "four", 4, kCut, "fou", "afo", kCut},
      {std::string("a\0", 2), "d\xE9j\xE0", 4, kCut, "d\xE9j", "ad\xE9", kCut},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const char* text = row.text.c_str();
    const std::wstring wideText = Widen(row.text);
    const std::wstring wideBefore = Widen(row.before);
    const auto format = [&](char* out) { return BoundedFormat(out, row.capacity, "%s", text); };
    EXPECT_EQ(Left(row.before, row.capacity, row.result, format), row.left);
    const auto copy = [&](auto* out, const auto* from) { return BoundedCopy(out, row.capacity, from); };
    EXPECT_EQ(Left(row.before, row.capacity, row.result, [&](char* out) { return copy(out, text); }), row.left);
    EXPECT_EQ(Left(wideBefore, row.capacity, row.result, [&](wchar_t* out) { return copy(out, wideText.c_str()); }),
              Widen(row.left));
    const std::size_t oddBytes = row.capacity * sizeof(wchar_t) + 1;
    const auto wideFormat = [&](wchar_t* out) { return BoundedWideFormat(out, oddBytes, "%s", text); };
    EXPECT_EQ(Left(wideBefore, row.capacity, row.result, wideFormat), Widen(row.left));
    const auto append = [&](auto* out, const auto* from) { return BoundedAppend(out, row.capacity, from); };
    EXPECT_EQ(Left(row.before, row.capacity, row.appendResult, [&](char* out) { return append(out, text); }),
              row.appended);
    EXPECT_EQ(
        Left(wideBefore, row.capacity, row.appendResult, [&](wchar_t* out) { return append(out, wideText.c_str()); }),
        Widen(row.appended));
  }
}

TEST(BoundedText, RefusesUnusableCapacitiesAndWritesNothing) {
  constexpr HRESULT kInvalid = STRSAFE_E_INVALID_PARAMETER;
  const std::string marks = "#########";
  for (const std::size_t size : {std::size_t{0}, kTooMuch, static_cast<std::size_t>(-1)}) {
    EXPECT_EQ(Left<char>("", size, kInvalid, [&](char* out) { return BoundedFormat(out, size, "%d", 1); }), marks);
    EXPECT_EQ(Left<char>("", size, kInvalid, [&](char* out) { return BoundedCopy(out, size, "x"); }), marks);
    EXPECT_EQ(Left<char>("", size, kInvalid, [&](char* out) { return BoundedAppend(out, size, "x"); }), marks);
    EXPECT_EQ(Left<wchar_t>(L"", size, kInvalid, [&](wchar_t* out) { return BoundedCopy(out, size, L"x"); }),
              Widen(marks));
  }
  // Less than a character, and too much in characters; no terminator within the capacity to append at.
  wchar_t wide[4] = L"abc";
  EXPECT_EQ(BoundedWideFormat(wide, sizeof(wchar_t) - 1, "%d", 1), kInvalid);
  EXPECT_EQ(BoundedWideFormat(wide, kTooMuch * sizeof(wchar_t), "%d", 1), kInvalid);
  EXPECT_EQ(BoundedAppend(wide, 3, L"d"), kInvalid);
  EXPECT_STREQ(wide, L"abc");
}

TEST(BoundedText, MeasuresOnlyWithinTheCapacity) {
  const struct {
    const char* text;
    std::size_t capacity;
    HRESULT result;
    std::size_t length;
  } rows[] = {
      {"abc", 4, S_OK, 3},
      {"abc", 2147483647, S_OK, 3},
      {"abc", 3, STRSAFE_E_INVALID_PARAMETER, 0},
      {"abc", 0, STRSAFE_E_INVALID_PARAMETER, 0},
      {"abc", kTooMuch, STRSAFE_E_INVALID_PARAMETER, 0},
      {nullptr, 4, STRSAFE_E_INVALID_PARAMETER, 0},
  };
  for (const auto& row : rows) {
    std::size_t length = 77;
    EXPECT_EQ(BoundedLength(row.text, row.capacity, &length), row.result) << row.capacity;
    EXPECT_EQ(length, row.length) << row.capacity;
  }
}

} // namespace
} // namespace korvex
