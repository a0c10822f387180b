#include "tests/unit/support/traced.h"
#include "wmi/trace_text.h"
#include "wmi/wmi_layer_trace.h"

#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

constexpr std::uint32_t kAll = 0xFFFFFFFF;

TEST(WmiLayerTrace, PrintsTaggedLinesOnceEnabledAndOpened) {
  constexpr struct {
    bool isEnabled;
    std::uint32_t categories;
    std::uint32_t levels;
    std::uint32_t category;
    const char* printed;
  } kRows[] = {
      {false, kAll, kAll, 0x20000000, ""},
      {true, 0, kAll, 0x20000000, ""},
      {true, kAll, 0, 0x20000000, ""},
      {true, 0x1FFFFFFF, kAll, 0x20000000, ""},
      {true, 0x20000000, 2, 0x20000000, "(orbWmiClass):line 7\n"},
      {true, 0, kAll, 0, "(N/A):line 7\n"},
      {true, kAll, kAll, 0xC0000000, "(N/A):line 7\n"},
  };
  for (const auto& row : kRows) {
    WmiLayerTrace trace;
    if (row.isEnabled) {
      trace.Enable();
    }
    trace.SetCategoryThreshold(row.categories);
    trace.SetLevelThreshold(row.levels);
    const CapturedOutput output = Capture([&] { trace.Print(row.category, 2, "line %d\n", 7); });
    EXPECT_EQ(output.out, row.printed) << "row " << &row - kRows;
    EXPECT_EQ(output.err, "");
  }
}

TEST(WmiLayerTrace, CutsMessagesAndLeavesErrnoAlone) {
  const std::string longText(600, 'm');
  errno = ERANGE;
  const auto print = [&] { WmiLayerTrace::Instance().Print(WmiLayerTrace::kCommon, 8, "%s\n", longText.c_str()); };
  const CapturedOutput output = CaptureTraced(print);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(output.out, "(orbWmiCommon):" + std::string(511, 'm'));
}

TEST(TraceText, PrintsPointersAndWideTextAlikeEverywhere) {
  EXPECT_STREQ(PointerText(std::uint64_t{0xAB12CD}).c_str(), "0000000000AB12CD");
  EXPECT_STREQ(PointerText(UINT64_MAX).c_str(), "FFFFFFFFFFFFFFFF");
  EXPECT_EQ(NarrowText(nullptr), "");
  EXPECT_EQ(NarrowText(L"caf\u00E9 \u4E2D"), "caf\xE9 ?");
}

} // namespace
} // namespace korvex
