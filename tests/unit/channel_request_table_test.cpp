#include "app/channel/ioctl.h"
#include "app/channel/request_output.h"
#include "app/channel/request_table.h"

#include <gtest/gtest.h>
#include <map>

namespace korvex {
namespace {

/// Every row between the lowest and the highest code, by code.
std::map<std::uint32_t, const RequestTableEntry*> Rows() {
  std::map<std::uint32_t, const RequestTableEntry*> rows;
  for (std::uint32_t code = 0x4D00; code <= 0x4FFF; ++code) {
    if (const RequestTableEntry* row = FindRequest(code)) {
      EXPECT_EQ(row->code, code);
      rows[code] = row;
    }
  }
  return rows;
}

TEST(RequestTable, FindsEveryRowByItsOwnCode) {
  const auto rows = Rows();
  // A duplicate code would hide a row and leave fewer.
  EXPECT_EQ(rows.size(), 27U);
  for (const std::uint32_t unknown : {0U, 0x4D04U, 0x4DFDU, 0x4F04U, 0xFFFFFFFFU}) {
    EXPECT_EQ(FindRequest(unknown), nullptr) << unknown;
  }
}

TEST(RequestTable, KnowsTheKindOfEveryOutputThatItNames) {
  for (const auto& [code, row] : Rows()) {
    EXPECT_EQ(row->output != nullptr, RequestOutputKind(code) != OutputKind::kNone) << std::hex << code;
    EXPECT_TRUE(row->method != nullptr || (row->input == nullptr && row->output == nullptr)) << std::hex << code;
  }
}

std::uint32_t gCollectedCode = 0;
void* gCollectedArgument = nullptr;
std::uint32_t Collect(std::uint32_t requestCode, void* argument, OrbWmiVariant&) {
  gCollectedCode = requestCode;
  gCollectedArgument = argument;
  return 7;
}

wmiReturn BuildNothing(void*, OrbWmiVariant&) {
  return kNothingToDo;
}

TEST(RequestTable, LeadsTheCollectionToTheConnectedRoom) {
  OrbWmiVariant output;
  InputArgumentsRecord record = {};
  const RequestTableEntry* row = FindRequest(0x4DF2);
  ASSERT_NE(row, nullptr);

  static constexpr RequestCallbacks kCallbacks = {Collect, Collect, Collect, BuildNothing};
  ConnectRequestTable(kCallbacks);
  EXPECT_EQ(row->callback(0x4DF2, &record, output), 7U);
  EXPECT_EQ(gCollectedCode, 0x4DF2U);
  EXPECT_EQ(gCollectedArgument, &record);
}

} // namespace
} // namespace korvex
