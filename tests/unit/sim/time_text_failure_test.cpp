#include "app/report/time_text.h"
#include "tests/unit/sim/channel_host.h"

#include <array>

namespace korvex {
namespace {

class TimeTextFailure : public ChannelHost {};

TEST_F(TimeTextFailure, IsTracedAndShown) {
  std::array<char, 19> text;
  const auto format = [&text] {
    FormatTimeOfDay(3723, text.data(), text.size());
    return true;
  };
  // (3723 + 11644473600) x 10000000 is 0x019DB1E780533780.
  const std::string times = "rawTime e8b\ndwHighDateTime 0x19db1e7, dwLowDateTime 0x80533780\n";
  EXPECT_EQ(Traced(true, format), times);
  EXPECT_STREQ(text.data(), "01:02:03");
  Begin(R"("faults": [{"operation": "FileTimeToSystemTime", "give": "invalid parameter"}])");
  EXPECT_EQ(Traced(true, format), times + "Unable to convert 0xe8b to system time.  Error 87\n");
  EXPECT_STREQ(text.data(), "Format error");
  FormatTimeOfDay(3723, text.data(), 9);
  EXPECT_STREQ(text.data(), "Format e");
}

} // namespace
} // namespace korvex
