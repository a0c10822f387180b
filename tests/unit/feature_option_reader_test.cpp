#include "app/cli/console/trace.h"
#include "app/options/feature_option_reader.h"
#include "tests/unit/support/capture.h"

#include <gtest/gtest.h>

namespace korvex {
namespace {

TEST(GetNextFeatureOption, RefusesMissingBuffersAndReadsOnBehindThem) {
  char text[] = "a=1,b";
  char keyword[kOptionKeywordLength + 1] = "before";
  std::uint32_t value = 7;
  std::uint8_t isValueProvided = 7;
  gTraceEnabled = true;
  const CapturedOutput output = Capture([&] {
    EXPECT_EQ(GetNextFeatureOption(text, nullptr, &value, &isValueProvided), -1);
    EXPECT_EQ(GetNextFeatureOption(nullptr, keyword, nullptr, &isValueProvided), -1);
  });
  gTraceEnabled = false;
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "GetNextFeatureOption: Reset parsing\nsavedArgs: 'a=1,b'\n"
                        "GetNextFeatureOption: No keyword or value buffer provided\nsavedArgs: 'a=1,b'\n"
                        "GetNextFeatureOption: No keyword or value buffer provided\n");
  EXPECT_STREQ(keyword, "before");
  EXPECT_EQ(value, 7U);

  EXPECT_EQ(GetNextFeatureOption(nullptr, keyword, &value, &isValueProvided), 1);
  EXPECT_STREQ(keyword, "a");
  EXPECT_EQ(value, 1U);
  EXPECT_EQ(isValueProvided, 1);
  EXPECT_EQ(GetNextFeatureOption(nullptr, keyword, &value, &isValueProvided), 1);
  EXPECT_STREQ(keyword, "b");
  EXPECT_EQ(value, 0U);
  EXPECT_EQ(isValueProvided, 0);
  EXPECT_EQ(GetNextFeatureOption(nullptr, keyword, &value, &isValueProvided), 0);
}

} // namespace
} // namespace korvex
