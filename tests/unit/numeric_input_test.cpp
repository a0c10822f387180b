#include "app/cli/console/numeric_input.h"
#include "tests/unit/support/capture.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

TEST(NumericInput, TellsAndReadsNumbers) {
  constexpr std::uint32_t kNone = 77;
  const std::string nines(100'000, '9');
  const struct {
    const char* text;
    int validity;          ///< as IsValidInteger tells it
    std::uint32_t value;   ///< as ParseNumericValue stores it; kNone where it refuses
    std::uint32_t leading; ///< as LeadingDecimal reads it
  } rows[] = {
      {"", 1, 0, 0},
      {"0", 1, 0, 0},
      {"010", 1, 10, 10},
      {"4294967295", 1, 4294967295, 4294967295},
      {"00000000000004294967295", 1, 4294967295, 4294967295},
      {"4294967296", 3, kNone, 0},
      {"4294967299", 3, kNone, 3},
      // The first offence decides.
      {"4294967296a", 3, kNone, 0},
      {"a4294967296", 0, kNone, 0},
      {"12a", 0, kNone, 12},
      {"-1", 0, kNone, 0},
      {"+1", 0, kNone, 0},
      {" 1", 0, kNone, 0},
      {"1 ", 0, kNone, 1},
      {"1\xE9", 0, kNone, 1},
      {"x10", 0, kNone, 0},
      {"0y10", 0, kNone, 0},
      {"0x", 0, 0, 0},
      {"0X", 0, 0, 0},
      {"0x10", 0, 16, 0},
      {"0XaBcDeF09", 0, 0xABCDEF09, 0},
      {"0x00000000FFFFFFFF", 0, 4294967295, 0},
      {"0x100000000", 0, kNone, 0},
      {"0x-1", 0, kNone, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(IsValidInteger(row.text), row.validity) << row.text;
    std::uint32_t value = kNone;
    int result = 0;
    Capture([&] { result = ParseNumericValue(row.text, "Level", &value); });
    EXPECT_EQ(result, row.value == kNone ? -1 : 1) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
    EXPECT_EQ(LeadingDecimal(row.text), row.leading) << row.text;
  }
  EXPECT_EQ(IsValidInteger(nullptr), 0);
  EXPECT_EQ(LeadingDecimal(nullptr), 0U);
  EXPECT_EQ(IsValidInteger(nines.c_str()), 3);
}

} // namespace
} // namespace korvex
