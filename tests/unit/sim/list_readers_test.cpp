#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "tests/unit/sim/collection_host.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace korvex {
namespace {

using simhost::CimValue;
using Elements = std::vector<ListElement>;

class ListReaders : public CollectionHost {};

/// What a list's elements come to in its store.
struct ListRow {
  const char* what;
  Elements elements;
  std::uint32_t stored;
};

TEST_F(ListReaders, ControllerRecordsThatFitAreStored) {
  const ListElement whole = Record(7328, 7328);
  const ListRow rows[] = {
      {"none", {}, 0},
      {"fewer than announced", {whole}, 1},
      {"as announced", {whole, whole}, 2},
      {"more than announced", {whole, whole, whole}, 2},
      {"short", {Record(22, 22), Record(1, 1)}, 2},
      {"shorter than told", {Record(7328, 22), whole}, 2},
      {"longer than told", {whole, Record(22, 23)}, 1},
      {"as long as the receive buffer", {Record(7338, 7338), whole}, 2},
      {"longer than the receive buffer", {whole, Record(7339, 7339)}, 1},
      {"told longer than the receive buffer", {Record(7339, 10), whole}, 0},
      {"told far longer", {Record(0xFFFFFFFF, 7328), whole}, 0},
      {"as long as the rest of the store", {whole, Record(7329, 7329)}, 2},
      {"longer than the rest of the store", {whole, Record(7330, 7330)}, 1},
      {"without bytes", {Record(0, 0), whole}, 2},
      {"told to have no bytes", {Record(0, 1), whole}, 0},
      {"without a size", {{CimValue(), whole.buffer}, whole}, 0},
      {"without a buffer", {whole, {7328U, CimValue()}}, 1},
  };
  for (const ListRow& row : rows) {
    Open();
    lists[L"VrxDsmGetTPGInfo"] = row.elements;
    EXPECT_EQ(Collect(), 1) << row.what;
    EXPECT_EQ(gArrayControllerCount, row.stored) << row.what;
  }
}

TEST_F(ListReaders, AnnouncedCountsBoundTheLists) {
  for (const std::uint32_t announced : {0U, 1U, 2U, 3U, 0xFFFFFFFFU}) {
    Open();
    lists[L"VrxDsmGetArrayInfo"] = {{186U, CimValue::Bytes(ArrayRecord(announced, announced))}};
    lists[L"VrxDsmGetTPGInfo"] = Elements(5, Record(7328, 7328));
    lists[L"VrxDsmGetMPGInfo"] = Elements(300, Record(2126, 2126));
    EXPECT_EQ(Collect(), 1);
    EXPECT_EQ(gArrayControllerCount, std::min(announced, 2U)) << announced;
    EXPECT_EQ(gArrayLunCount, std::min(announced, 255U)) << announced;
  }
}

TEST_F(ListReaders, LunRecordsThatFitAreStored) {
  const ListElement whole = Record(2126, 2126);
  const ListRow rows[] = {
      {"none", {}, 0},
      {"more than announced", Elements(400, whole), 255},
      {"short", {Record(142, 142), Record(0, 0), whole}, 3},
      {"longer, as long as the receive buffer", {Record(542140, 542140), whole}, 2},
      {"longer than the receive buffer", {whole, Record(2126, 542141), whole}, 1},
      {"told to be anything", {Record(0, 2126), Record(0xFFFFFFFF, 2126), {CimValue(), whole.buffer}}, 3},
      {"without a buffer", {whole, {2126U, CimValue()}, whole}, 1},
  };
  for (const ListRow& row : rows) {
    Open();
    lists[L"VrxDsmGetMPGInfo"] = row.elements;
    EXPECT_EQ(Collect(), 1) << row.what;
    EXPECT_EQ(gArrayLunCount, row.stored) << row.what;
  }
}

TEST_F(ListReaders, DeviceInfoRecordsThatFitAreStored) {
  const ListElement whole = Record(60, 60);
  const ListRow rows[] = {
      {"none", {}, 0},
      {"many", Elements(300, Record(70, 70)), 255},
      {"longer than the receive buffer", {whole, Record(71, 71), whole}, 1},
      {"without a buffer", {whole, {60U, CimValue()}, whole}, 3},
      {"without size and buffer", {whole, {CimValue(), CimValue()}, whole}, 3},
      {"without a buffer, told to be long", {whole, {71U, CimValue()}, whole}, 1},
      {"longer than told", {whole, Record(59, 60), whole}, 1},
  };
  for (const ListRow& row : rows) {
    Open();
    lists[L"VrxDsmGetDeviceInfo"] = row.elements;
    EXPECT_EQ(Collect(), 1) << row.what;
    EXPECT_EQ(gDevInfoCount, row.stored) << row.what;
  }
}

/// A second collection in the same run: what the first left must not show through.
TEST_F(ListReaders, ShortRecordsAreFollowedByZerosAtTheirOwnPlaces) {
  Open();
  lists[L"VrxDsmGetTPGInfo"] = {Record(7338, 7338, 0xEE), Record(7329, 7329, 0xEE)};
  lists[L"VrxDsmGetMPGInfo"] = Elements(3, Record(2126, 3000, 0xEE));
  lists[L"VrxDsmGetDeviceInfo"] = Elements(3, Record(70, 70, 0xEE));
  EXPECT_EQ(Collect(), 1);
  EXPECT_EQ(StoredController(1).designation, 0xEE);
  lists[L"VrxDsmGetTPGInfo"] = {Record(22, 22, 1), Record(20, 20, 2)};
  lists[L"VrxDsmGetMPGInfo"] = {Record(2126, 93, 3), Record(2126, 2126, 4), Record(2126, 93, 5)};
  lists[L"VrxDsmGetDeviceInfo"] = {Record(60, 60, 6), {70U, CimValue()}, Record(1, 1, 7)};
  EXPECT_EQ(Collect(), 1);

  EXPECT_EQ(StoredController(0).designation, 1);
  EXPECT_EQ(StoredController(0).paths[31].pathId, 0U);
  EXPECT_EQ(StoredController(1).numberOfPaths, 2);
  EXPECT_EQ(StoredController(1).designation, 0);
  EXPECT_EQ(gTpgRecordSize, 20U);
  EXPECT_EQ(StoredLun(0).numberOfPaths, 3);
  EXPECT_EQ(StoredLun(0).loadBalancePolicy, 0);
  EXPECT_EQ(StoredLun(1).paths[31].internalState, 0x04040404U);
  EXPECT_EQ(StoredLun(2).paths[31].internalState, 0U);
  const auto deviceByte = [](std::size_t record, std::size_t byte) { return gDevInfoBuffer[70 * record + byte]; };
  EXPECT_EQ(deviceByte(0, 59), 6);
  EXPECT_EQ(deviceByte(0, 60), 0);
  EXPECT_EQ(deviceByte(1, 0), 0);
  EXPECT_EQ(deviceByte(2, 0), 7);
  EXPECT_EQ(deviceByte(2, 1), 0);
  EXPECT_EQ(gDevInfoRecordSize, 1U);
}

/// Also not of the size that an object would be read into.
TEST_F(ListReaders, AnObjectIsNoRecord) {
  for (const std::uint32_t size : {23U, 24U, 25U}) {
    Open();
    lists[L"VrxDsmGetDeviceInfo"] = {
        {size, CimValue::Embed(simhost::CimObject(Classes().RequireClass(L"VRXDSM_DEVICE_INFO")))}};
    EXPECT_EQ(Collect(), 1);
    EXPECT_EQ(gDevInfoCount, 0U) << size;
  }
}

TEST_F(ListReaders, AnArrayWithoutARecordHasNoParts) {
  Open();
  lists[L"VrxDsmGetTPGInfo"] = Elements(2, Record(7328, 7328));
  EXPECT_EQ(Collect(), 1);
  EXPECT_EQ(gArrayControllerCount, 2U);
  lists[L"VrxDsmGetArrayInfo"] = {Record(187, 187)};
  EXPECT_EQ(Collect(), 1);
  EXPECT_EQ(gArrayControllerCount, 0U);
}

} // namespace
} // namespace korvex
