#include "app/inventory/current_array.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/gen2_stores.h"
#include "tests/unit/sim/channel_host.h"

namespace korvex {
namespace {

class Collection : public ChannelHost {
protected:
  /// Starts the channel over a DSM with an array of two controllers and three LUNs of a path each.
  void Open(const std::string& rules) {
    Begin(rules, R"({"luns": [{"paths": [{}]}, {"paths": [{}]}, {"paths": [{}]}]})");
    ASSERT_TRUE(StartChannel());
  }

  /// Collects the array in all its parts, with the trace on.
  static std::string Collect() {
    gDetailMode = true;
    gReportSelectionErrors = false;
    return Traced(1, GetDsmArrayInfo);
  }
};

TEST_F(Collection, AListThatCannotBeReadIsEmpty) {
  // An embedded object is asked for IWbemClassObject in this order: the array list, its element, the controller list,
  // its two elements, the LUN list, its three elements, the device list.
  const struct {
    const char* fault;
    const char* trace;
    std::uint32_t controllers; ///< stored in spite of the failure
    std::uint32_t luns;
    std::uint32_t devices;
  } rows[] = {
      {R"("GetObject", "target": "VRXDSM_ARRAY_INFO_LIST")", "VRXDSM_ARRAY_INFO_LIST class", 0, 0, 3},
      {R"("GetObject", "target": "VRXDSM_ARRAY_INFO")", "VRXDSM_ARRAY_INFO class", 0, 0, 3},
      {R"("QueryInterface", "target": "IWbemClassObject", "occurrence": 1)", "arrayInfoListClass enum", 0, 0, 3},
      {R"("Get", "target": "VRXDSM_ARRAY_INFO_LIST.List")", "", 0, 0, 3},
      {R"("CreateInstanceEnum", "target": "VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST")",
       "VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST class", 0, 3, 3},
      {R"("GetObject", "target": "VRXDSM_TARGET_PORT_GROUP_CONTROLLER")", "VRXDSM_TARGET_PORT_GROUP_CONTROLLER class",
       0, 3, 3},
      {R"("QueryInterface", "target": "IWbemClassObject", "occurrence": 3)", "tpgInfoListClass enum", 0, 3, 3},
      {R"("Get", "target": "VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST.List")", "initializeArrayEnumerator", 0, 3, 3},
      {R"("GetObject", "target": "VRXDSM_MULTIPATH_DEVICE_LIST")", "VRXDSM_MULTIPATH_DEVICE_LIST class", 2, 0, 3},
      {R"("GetObject", "target": "VRXDSM_MULTIPATH_DEVICE")", "VRXDSM_MULTIPATH_DEVICE class", 2, 0, 3},
      {R"("QueryInterface", "target": "IWbemClassObject", "occurrence": 6)", "mpgInfoListClass enum", 2, 0, 3},
      {R"("Get", "target": "VRXDSM_MULTIPATH_DEVICE_LIST.List")", "", 2, 0, 3},
      {R"("GetObject", "target": "VRXDSM_DEVICE_INFO_LIST")", "VRXDSM_DEVICE_INFO_LIST class", 2, 3, 0},
      {R"("GetObject", "target": "VRXDSM_DEVICE_INFO")", "VRXDSM_DEVICE_INFO class", 2, 3, 0},
      {R"("QueryInterface", "target": "IWbemClassObject", "occurrence": 10)", "devInfoListClass enum", 2, 3, 0},
      {R"("Get", "target": "VRXDSM_DEVICE_INFO_LIST.List")", "initializeArrayEnumerator", 2, 3, 0},
  };
  for (const auto& row : rows) {
    Open(std::string(R"("faults": [{"operation": )") + row.fault + R"(, "give": "0x80041001"}])");
    const std::string trace = Collect();
    const std::size_t told = trace.find("Error initializing ");
    EXPECT_EQ(told == std::string::npos ? "" : trace.substr(told + 19, trace.find('\n', told) - told - 19), row.trace)
        << row.fault;
    EXPECT_EQ(gArrayControllerCount, row.controllers) << row.fault;
    EXPECT_EQ(gArrayLunCount, row.luns) << row.fault;
    EXPECT_EQ(gDevInfoCount, row.devices) << row.fault;
  }
}

TEST_F(Collection, DeviceRecordsThatFitAreStored) {
  const struct {
    const char* overrides; ///< the second of three records, but for the first two rows
    std::uint32_t stored;
  } rows[] = {
      {R"({"class": "VRXDSM_DEVICE_INFO_LIST", "property": "List", "length": 0})", 0},
      {R"({"class": "VRXDSM_DEVICE_INFO_LIST", "property": "List", "length": 300})", 255},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Buffer", "index": 1, "length": 61})", 1},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Buffer", "index": 1, "null": true})", 3},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Size", "index": 1, "null": true})", 1},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Size", "index": 1, "value": 71, "type": "uint32"})", 1},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Size", "index": 1, "value": 59, "type": "uint32"})", 1},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Buffer", "index": 1, "null": true},
          {"class": "VRXDSM_DEVICE_INFO", "property": "Size", "index": 1, "null": true})",
       3},
      {R"({"class": "VRXDSM_DEVICE_INFO", "property": "Buffer", "index": 1, "null": true},
          {"class": "VRXDSM_DEVICE_INFO", "property": "Size", "index": 1, "value": 71, "type": "uint32"})",
       1},
  };
  for (const auto& row : rows) {
    Open(std::string(R"("overrides": [)") + row.overrides + "]");
    Collect();
    EXPECT_EQ(gDevInfoCount, row.stored) << row.overrides;
  }
}

/// A second collection in the same run: what the first left must not show through.
TEST_F(Collection, ShortRecordsAreFollowedByZerosAtTheirOwnPlaces) {
  std::string rules;
  const auto add = [&rules](const std::string& record, int occurrence, const std::string& property,
                            const std::string& value) {
    rules += (rules.empty() ? "" : ",") + (R"({"class": ")" + record + R"(", "occurrence": )") +
             std::to_string(occurrence) + R"(, "property": ")" + property + "\", " + value + "}";
  };
  const auto addBytes = [&add](const std::string& record, int occurrence, std::size_t size, const std::string& byte) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
      bytes += byte;
    }
    add(record, occurrence, "Size", R"("type": "uint32", "value": )" + std::to_string(size));
    add(record, occurrence, "Buffer", R"("bytes": ")" + bytes + "\"");
  };
  const std::string controller = "VRXDSM_TARGET_PORT_GROUP_CONTROLLER";
  const std::string lun = "VRXDSM_MULTIPATH_DEVICE";
  const std::string device = "VRXDSM_DEVICE_INFO";
  addBytes(controller, 1, 7338, "ee");
  addBytes(controller, 2, 7329, "ee");
  addBytes(controller, 3, 22, "01");
  addBytes(controller, 4, 20, "02");
  for (const int first : {1, 2, 3}) {
    addBytes(lun, first, 3000, "ee");
    addBytes(device, first, 70, "ee");
  }
  addBytes(lun, 4, 93, "03");
  addBytes(lun, 5, 2126, "04");
  addBytes(lun, 6, 93, "05");
  addBytes(device, 4, 60, "06");
  add(device, 5, "Buffer", R"("null": true)");
  addBytes(device, 6, 1, "07");
  Open("\"overrides\": [" + rules + "]");
  Collect();
  EXPECT_EQ(StoredController(1).designation, 0xEE);
  Collect();

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

} // namespace
} // namespace korvex
