#include "app/cli/console/numeric_input.h"
#include "tests/unit/support/capture.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

TEST(IsValidInteger, TellsValidFromInvalidAndTooLarge) {
  struct Case {
    const char* text;
    int expected;
  };
  const Case cases[] = {
      {nullptr, 0},
      {"", 1},
      {"0", 1},
      {"4294967295", 1},
      {"00000000000004294967295", 1},
      {"4294967296", 3},
      {"99999999999", 3},
      {"12a", 0},
      {"-1", 0},
      {"+1", 0},
      {" 1", 0},
      {"1 ", 0},
      {"0x10", 0},
      {"1\xE9", 0},
      // The first offence decides.
      {"4294967296a", 3},
      {"a4294967296", 0},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(IsValidInteger(row.text), row.expected) << (row.text != nullptr ? row.text : "none");
  }
  EXPECT_EQ(IsValidInteger(std::string(100'000, '9').c_str()), 3);
  EXPECT_EQ(IsValidInteger(std::string(100'000, '0').c_str()), 1);
}

TEST(ParseNumericValue, ReadsDecimalAndHexadecimal) {
  struct Case {
    const char* text;
    std::uint32_t expected;
  };
  const Case cases[] = {
      {"", 0},
      {"010", 10},
      {"4294967295", 4294967295},
      {"0x", 0},
      {"0X", 0},
      {"0x10", 16},
      {"0XaBcDeF09", 0xABCDEF09},
      {"0x00000000FFFFFFFF", 4294967295},
      {"0x0000000000000000000000001", 1},
  };
  for (const Case& row : cases) {
    std::uint32_t value = 77;
    EXPECT_EQ(ParseNumericValue(row.text, "Level", &value), 1) << row.text;
    EXPECT_EQ(value, row.expected) << row.text;
  }
}

TEST(ParseNumericValue, NamesWhatItRefusesAndStoresNothing) {
  struct Case {
    std::string text;
    std::string message;
  };
  const auto tooLarge = [](const std::string& text) {
    return Case{text, "Input ERROR -> the value associated with parameter 'Level' (" + text + ") exceeded 32 bits\n"};
  };
  const auto invalid = [](const std::string& text) {
    return Case{text, "Invalid value for parameter Level -> " + text + " - valid hex or decimal value required.\n"};
  };
  const Case cases[] = {
      tooLarge("0x100000000"),
      tooLarge("0x123456789"),
      tooLarge("4294967296"),
      tooLarge("0x" + std::string(100'000, 'f')),
      invalid("-1"),
      invalid("0x1G"),
      invalid("0x-1"),
      invalid("x10"),
      invalid("0y10"),
      invalid("ten"),
      // The ninth digit is not looked at when a later character is no digit.
      invalid("0x123456789G"),
  };
  for (const Case& row : cases) {
    std::uint32_t value = 77;
    int result = 0;
    const CapturedOutput output = Capture([&] { result = ParseNumericValue(row.text.c_str(), "Level", &value); });
    EXPECT_EQ(result, -1) << row.text;
    EXPECT_EQ(value, 77U) << row.text;
    EXPECT_EQ(output.err, row.message);
    EXPECT_EQ(output.out, "");
  }
}

TEST(LeadingDecimal, TakesTheDigitsAtTheBeginning) {
  struct Case {
    const char* text;
    std::uint32_t expected;
  };
  const Case cases[] = {
      {nullptr, 0}, {"", 0},     {"3", 3},          {"12abc", 12},     {"abc12", 0}, {"-1", 0},
      {" 1", 0},    {"0x10", 0}, {"4294967296", 0}, {"4294967299", 3}, {"256", 256}, {"007x", 7},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(LeadingDecimal(row.text), row.expected) << (row.text != nullptr ? row.text : "none");
  }
}

} // namespace
} // namespace korvex
