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

TEST(WmiLayerTrace, PrintsNothingUntilEnabledAndOpened) {
  struct Row {
    bool isEnabled;
    std::uint32_t categories;
    std::uint32_t levels;
    const char* printed;
  };
  constexpr Row kRows[] = {
      {false, kAll, kAll, ""},
      {true, 0, 0, ""},
      {true, kAll, 0, ""},
      {true, 0, kAll, ""},
      {true, WmiLayerTrace::kClass - 1, kAll, ""},
      {true, WmiLayerTrace::kClass, WmiLayerTrace::kWarning, "(orbWmiClass):line 7\n"},
      {true, kAll, WmiLayerTrace::kWarning - 1, ""},
      {true, kAll, kAll, "(orbWmiClass):line 7\n"},
  };
  for (const Row& row : kRows) {
    WmiLayerTrace trace;
    if (row.isEnabled) {
      trace.Enable();
    }
    trace.SetCategoryThreshold(row.categories);
    trace.SetLevelThreshold(row.levels);
    const CapturedOutput output =
        Capture([&] { trace.Print(WmiLayerTrace::kClass, WmiLayerTrace::kWarning, "line %d\n", 7); });
    EXPECT_EQ(output.out, row.printed) << row.isEnabled << " " << row.categories << " " << row.levels;
    EXPECT_EQ(output.err, "");
  }
}

TEST(WmiLayerTrace, TagsLinesByCategory) {
  struct Row {
    std::uint32_t category;
    const char* printed;
  };
  constexpr Row kRows[] = {
      {0x04000000, "(orbWmiVariant):x"},    {0x08000000, "(orbWmiCommon):x"},  {0x10000000, "(orbWmiEnumerator):x"},
      {0x20000000, "(orbWmiClass):x"},      {0x80000000, "(orbWmiRequest):x"}, {0, "(N/A):x"},
      {0x40000000, "(orbWmiConnection):x"}, {0x02000000, "(N/A):x"},           {0xC0000000, "(N/A):x"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(CaptureTraced([&] { WmiLayerTrace::Instance().Print(row.category, 1, "x"); }).out, row.printed);
  }
}

TEST(WmiLayerTrace, CutsMessagesAndLeavesErrnoAlone) {
  const std::string longText(600, 'm');
  errno = ERANGE;
  const CapturedOutput output =
      CaptureTraced([&] { WmiLayerTrace::Instance().Print(WmiLayerTrace::kCommon, 8, "%s\n", longText.c_str()); });
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(output.out, "(orbWmiCommon):" + std::string(511, 'm'));
}

TEST(TraceText, PrintsPointersAndHandlesAsSixteenDigits) {
  EXPECT_STREQ(PointerText(nullptr).c_str(), "0000000000000000");
  EXPECT_STREQ(PointerText(std::uint64_t{0xAB12CD}).c_str(), "0000000000AB12CD");
  EXPECT_STREQ(PointerText(UINT64_MAX).c_str(), "FFFFFFFFFFFFFFFF");
}

TEST(TraceText, NarrowsToTheAnsiCodePage) {
  EXPECT_EQ(NarrowText(nullptr), "");
  EXPECT_EQ(NarrowText(L""), "");
  EXPECT_EQ(NarrowText(L"VRXDSM_ARRAY"), "VRXDSM_ARRAY");
  EXPECT_EQ(NarrowText(L"caf\u00E9 \u4E2D"), "caf\xE9 ?");
}

} // namespace
} // namespace korvex
