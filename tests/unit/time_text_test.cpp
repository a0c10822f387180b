#include "app/cli/console/trace.h"
#include "app/report/time_text.h"
#include "tests/unit/support/capture.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

TEST(TimeText, TimeOfDay) {
  struct Row {
    std::uint32_t seconds;
    const char* text;
  };
  const Row rows[] = {
      {0, "00:00:00"},         {59, "00:00:59"},          {3723, "01:02:03"},
      {86399, "23:59:59"},     {86400, "00:00:00"},       {86400 + 3661, "01:01:01"},
      {951782400, "00:00:00"}, {2147483648U, "03:14:08"}, {4294967295U, "06:28:15"},
  };
  for (const Row& row : rows) {
    std::array<char, 19> text;
    text.fill('?');
    FormatTimeOfDay(row.seconds, text.data(), text.size());
    EXPECT_STREQ(text.data(), row.text) << row.seconds;
    EXPECT_EQ(std::string(text.data() + 9, 10), std::string(10, '\0')) << "the rest is cleared";
  }
}

TEST(TimeText, TracesTheFileTime) {
  gTraceEnabled = true;
  std::array<char, 19> text;
  const CapturedOutput captured = Capture([&text] { FormatTimeOfDay(3723, text.data(), text.size()); });
  gTraceEnabled = false;
  // (3723 + 11644473600) x 10000000 is 0x019DB1E780533780.
  EXPECT_EQ(captured.err, "rawTime e8b\ndwHighDateTime 0x19db1e7, dwLowDateTime 0x80533780\n");
  EXPECT_EQ(captured.out, "");
}

TEST(TimeText, ShortBufferCutsAndTerminates) {
  std::array<char, 9> text;
  FormatTimeOfDay(3723, text.data(), text.size());
  EXPECT_STREQ(text.data(), "01:02:03");
  FormatTimeOfDay(3723, text.data(), 6);
  EXPECT_STREQ(text.data(), "01:02");
}

} // namespace
} // namespace korvex
