#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/report/interface_type_name.h"
#include "app/report/summary_listing.h"
#include "tests/unit/support/capture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvex {
namespace {

/// A current array of generation 2 in stores of the test's own.
class SummaryListing : public testing::Test {
protected:
  SummaryListing() {
    gMofFileVersion[0] = '2';
    gMofFileVersion[1] = '0';
    std::copy_n("60080e50001f2e3d0000000000000a0b", 32, m_wwn);
    std::copy_n("Depot", 6, m_name);
    std::fill(std::begin(m_interfaceTypes), std::end(m_interfaceTypes), std::uint8_t{255});
    gModuleWWN = m_wwn;
    gModuleName = m_name;
    gInterfaceTypes = m_interfaceTypes;
    gSelectedArrayId = 3;
  }
  ~SummaryListing() override {
    gModuleWWN = nullptr;
    gModuleName = nullptr;
    gInterfaceTypes = nullptr;
    gMofFileVersion[0] = 0;
    gMofFileVersion[1] = 0;
    ResetRunState();
  }

  static std::string Printed(void (*print)()) { return Capture(print).out; }
  static std::string PrintedRow() {
    return Printed([] { EXPECT_TRUE(PrintArraySummaryRow()); });
  }

  std::uint8_t m_wwn[kModuleWwnSlot] = {};
  char m_name[kModuleNameSlot] = {};
  std::uint8_t m_interfaceTypes[kInterfaceTypesCapacity] = {};
};

TEST_F(SummaryListing, InterfaceColumn) {
  struct Row {
    std::vector<std::uint8_t> codes;
    std::string names;
    std::size_t spaces;
  };
  // The names' width w counts no first space; 2 spaces follow, then 16 - (w + 2) more while w + 2 is below 15.
  const Row rows[] = {
      {{}, "", 2 + 14},
      {{0}, " FC", 2 + 12},
      {{0, 0, 0}, " FC", 2 + 12},
      {{5, 5, 0, 255}, " iSCSI, FC", 2 + 5},
      {{255, 6, 255, 4}, " SAS, IB", 2 + 7},
      {{1, 6}, " invalid, SAS", 2 + 2},
      {{0, 4, 5}, " FC, IB, iSCSI", 2},
      {{1, 2, 3}, " invalid, invalid, invalid", 2},
      {{7}, " unknown", 2 + 7},
      {{7, 254, 7, 32, 0, 39}, " unknown, unknown, unknown, FC, unknown", 2},
      {{0, 32, 64}, " FC, unknown, unknown", 2},
  };
  for (const Row& row : rows) {
    std::fill(std::begin(m_interfaceTypes), std::end(m_interfaceTypes), std::uint8_t{255});
    std::copy(row.codes.begin(), row.codes.end(), m_interfaceTypes);
    EXPECT_EQ(PrintedRow(),
              " 3 60080e50001f2e3d0000000000000a0b " + row.names + std::string(row.spaces, ' ') + "Depot     \n");
  }
}

TEST_F(SummaryListing, OfGenerationOneWritesTheWwnInHexadecimal) {
  gMofFileVersion[0] = 1;
  EXPECT_EQ(PrintedRow(), " 3 36303038306535303030316632653364 " + std::string(16, ' ') + "Depot     \n");
}

TEST_F(SummaryListing, NoRowWithoutTheWwnTable) {
  gModuleWWN = nullptr;
  EXPECT_EQ(Printed([] { EXPECT_FALSE(PrintArraySummaryRow()); }), "");
}

TEST_F(SummaryListing, FrameByGeneration) {
  const std::string rule(75, '-');
  const std::string head = rule + "\nInfo of Array Module's seen by this Host. \n" + rule + "\n";
  EXPECT_EQ(Printed(PrintListingHead),
            head + " ID               WWN                Interface(s)    Name\n" + rule + "\n");
  EXPECT_EQ(Printed(PrintListingClosingRule), rule + "\n");
  gMofFileVersion[1] = '.';
  EXPECT_EQ(Printed(PrintListingHead), head + "ID      WWN           Interface(s)    Name\n" + rule + "\n");
}

} // namespace
} // namespace korvex
