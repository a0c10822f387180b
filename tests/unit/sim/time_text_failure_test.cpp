#include "app/report/time_text.h"
#include "tests/unit/sim/channel_host.h"
#include "tests/unit/support/capture.h"

#include <array>

namespace korvex {
namespace {

class TimeTextFailure : public ChannelHost {};

TEST_F(TimeTextFailure, IsTracedAndShown) {
  Begin(R"([{"operation": "FileTimeToSystemTime", "give": "invalid parameter"}])");
  gTraceEnabled = true;
  std::array<char, 19> text;
  const CapturedOutput captured = Capture([&text] { FormatTimeOfDay(3723, text.data(), text.size()); });
  EXPECT_STREQ(text.data(), "Format error");
  EXPECT_EQ(captured.err, "rawTime e8b\ndwHighDateTime 0x19db1e7, dwLowDateTime 0x80533780\n"
                          "Unable to convert 0xe8b to system time.  Error 87\n");
  gTraceEnabled = false;
  FormatTimeOfDay(3723, text.data(), 9);
  EXPECT_STREQ(text.data(), "Format e");
}

} // namespace
} // namespace korvex
