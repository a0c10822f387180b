#include "app/cli/controller_option.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

TEST(ControllerWord, SplitsAtItsCommas) {
  const std::string wwn = "600a0b80001122330000abcd4455ef66";
  struct Case {
    std::string word;
    ControllerWord expected;
    std::uint32_t index;
  };
  constexpr auto kGood = ControllerWord::kGood;
  constexpr auto kBadWwn = ControllerWord::kBadWwn;
  constexpr auto kBadIndex = ControllerWord::kBadIndex;
  constexpr std::uint32_t kUntouched = 77;
  const Case cases[] = {
      {wwn + ",0", kGood, 0},
      {wwn + ",A", kGood, 0},
      {wwn + ",a", kGood, 0},
      {wwn + ",1", kGood, 1},
      {wwn + ",B", kGood, 1},
      {wwn + ",b", kGood, 1},
      {wwn + ",b,whatever", kGood, 1},
      {wwn + ",b,", kGood, 1},
      // Any 32 characters are a WWN.
      {"-" + std::string(31, '?') + ",a", kGood, 0},
      {wwn, kBadIndex, kUntouched},
      {wwn + ",", kBadIndex, kUntouched},
      {wwn + ",,1", kBadIndex, kUntouched},
      {wwn + ",2", kBadIndex, kUntouched},
      {wwn + ",C", kBadIndex, kUntouched},
      {wwn + ",\xE1", kBadIndex, kUntouched},
      {wwn + ",00", kBadIndex, kUntouched},
      {wwn + ", 0", kBadIndex, kUntouched},
      {wwn.substr(1) + ",0", kBadWwn, kUntouched},
      {wwn + "0,0", kBadWwn, kUntouched},
      {"," + wwn + ",0", kBadWwn, kUntouched},
      {"", kBadWwn, kUntouched},
      {",", kBadWwn, kUntouched},
      // The WWN is looked at first.
      {"short,2", kBadWwn, kUntouched},
  };
  for (const Case& row : cases) {
    std::string word = row.word;
    std::uint32_t index = kUntouched;
    EXPECT_EQ(SplitControllerWord(word.data(), index), row.expected) << row.word;
    EXPECT_EQ(index, row.index) << row.word;
    EXPECT_STREQ(word.c_str(), row.word.substr(0, row.word.find(',')).c_str());
  }
}

} // namespace
} // namespace korvex
