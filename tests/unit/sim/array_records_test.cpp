#include "simhost/array_description.h"
#include "simhost/array_records.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

// Every described field at its place in the records, and what stands there undescribed.

namespace simhost {
namespace {

using Bytes = std::vector<std::uint8_t>;

ArrayModel Array(const std::string& json) {
  const Json parsed = ParseJson(json);
  return ReadArray(Node(parsed, "/array"), 0);
}

Bytes Text(const std::string& text) {
  return {text.begin(), text.end()};
}

/// The first offset at which a record is not `size` bytes of zero but for the given fields; `size` when there is none.
std::size_t Difference(const Bytes& record, std::size_t size,
                       const std::vector<std::pair<std::size_t, Bytes>>& fields) {
  Bytes expected(size);
  for (const auto& [offset, bytes] : fields) {
    std::copy(bytes.begin(), bytes.end(), expected.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  EXPECT_EQ(record.size(), size);
  const auto [different, end] = std::mismatch(record.begin(), record.end(), expected.begin(), expected.end());
  return static_cast<std::size_t>(different - record.begin());
}

TEST(ArrayRecordsTest, LaysOutAnArray) {
  const ArrayModel array = Array(R"({
    "id": 254, "wwn": "0123456789abcdef0123456789ABCDEF", "name": {"units": [65, 8364, 55296]},
    "extendedPathRecovery": 2, "utmLunEnabled": true, "utmLun": 31, "announcedLuns": "0x01020304",
    "announcedControllers": "0x0a0b0c0d", "controllers": [],
    "interfaceTypes": ["FC", "IB", "iSCSI", "SAS", "unused", 77]})");
  EXPECT_EQ(Difference(ArrayRecord(array), 186,
                       {{8, Text("0123456789abcdef0123456789ABCDEF")},
                        {41, {0x41, 0, 0xAC, 0x20, 0, 0xD8}},
                        {100, Bytes(64, 255)},
                        {100, {0, 4, 5, 6, 255, 77}},
                        {164, {254, 2, 1, 31, 4, 3, 2, 1, 0x0D, 0x0C, 0x0B, 0x0A}}}),
            186U);
  // 29 units fill the room before the interface codes, without a terminator; the first code is that of A's first path.
  const Bytes cut = ArrayRecord(Array(R"({"name": "0123456789012345678901234567890"})"));
  EXPECT_EQ(Bytes(cut.begin() + 95, cut.begin() + 104), (Bytes{'7', 0, '8', 0, 0, 0, 0, 255, 255}));
}

TEST(ArrayRecordsTest, LaysOutAController) {
  const ArrayModel array = Array(R"({"controllers": [{
    "serial": "S123456789", "designation": 7, "serviceMode": true, "state": "reset", "pathsInUse": 200,
    "paths": [ {}, {
      "id": "0x8877665544332211", "extension": "0xccbbaa99", "state": "pending remove", "interface": "SAS",
      "congestion": { "present": 3, "start": 3723, "intervals": 70000, "ioExceeded": 1, "population": 2,
                      "averageResponse": 3, "totalResponse": "0x04000000" } } ] }]})");
  EXPECT_EQ(Difference(ControllerRecord(array.controllers[0]), 7328,
                       {{8, Text("S123456789")},
                        {18, {200, 1, 4, 7}},
                        {32, {0, 1, 0}},
                        {32 + 28, {0, 0, 0, 0x77, 0, 0, 0, 0}},
                        {260, {3, 3, 6, 0}},
                        {264, {0x8B, 0x0E, 0, 0, 0x70, 0x11, 1, 0, 1, 0, 0, 0}},
                        {276, {2, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 4}},
                        {288, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}},
                        {296, {0x99, 0xAA, 0xBB, 0xCC}}}),
            7328U);
}

TEST(ArrayRecordsTest, LaysOutALun) {
  const ArrayModel array = Array(R"({"luns": [{
    "wwn": "abcdefghijklmnopqrstuvwxyz012345", "vendorProduct": "VP", "number": 9, "state": "failed",
    "failover": "mode select explicit", "pathsInUse": 33, "policy": "vendor specific", "persistThroughPowerLoss": true,
    "persistSent": 4, "owner": "B", "ownerSerial": "OWNER00001", "preferred": 0, "preferredSerial": "PREFER0002",
    "disk": "MPIO Disk5", "throttled": true, "groupThrottled": 9, "internalState": "0x01020304", "tas": "conflict",
    "alb": "active", "paths": [ {
      "id": 1, "extension": 2, "controller": "A", "state": "standby", "lastGoodState": "failed",
      "previousStatus": "transitioning", "deviceInfo": "0xfffffa8001020304", "deviceInfoRest": "0x1112131415161718",
      "weight": 200, "addressLength": 12, "port": 3, "path": 4, "target": 5, "lun": 6, "requestsInProgress": 4660,
      "condition": "administratively offline", "flags": [true, false, 2, "yes", "no", 255] } ] }]})");
  EXPECT_EQ(Difference(LunRecord(array.luns[0], 1), 2126,
                       {{8, Text("abcdefghijklmnopqrstuvwxyz012345")},
                        {40, {'V', 0, 'P', 0}},
                        {90, {3, 4, 33, 7, 1, 4}},
                        {98, Text("\1OWNER00001")},
                        {110, Text("PREFER0002MPIO Disk5")},
                        {130, {1, 9, 4, 3, 2, 1, 3, 0, 0, 0, 2}},
                        {142, {1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 2}},
                        {155, {4, 3, 2, 1, 0x80, 0xFA, 0xFF, 0xFF, 0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11}},
                        {171, {200, 0, 0, 12, 0, 0, 0, 3, 4, 5, 6}},
                        {190, {18, 15, 0x34, 0x12, 1, 0, 2, 1, 0, 255, 2, 0, 0, 0}}}),
            2126U);
}

TEST(ArrayRecordsTest, LaysOutADeviceAndWhatIsGivenRaw) {
  const ArrayModel array = Array(R"({
    "raw": "01 02", "controllers": [{"raw": []}], "luns": [{"raw": "ff", "size": 9}],
    "devices": [ {"state": 4, "controller": "none", "port": 1, "path": 2, "target": 3, "lun": 250},
                 {"raw": [7, 8, 9]} ]})");
  EXPECT_EQ(Difference(DeviceRecord(array.devices[0]), 60, {{40, {4, 255}}, {56, {1, 2, 3, 250}}}), 60U);
  EXPECT_EQ(DeviceRecord(array.devices[1]), (Bytes{7, 8, 9}));
  EXPECT_EQ(ArrayRecord(array), (Bytes{1, 2}));
  EXPECT_EQ(ControllerRecord(array.controllers[0]), Bytes());
  EXPECT_EQ(LunRecord(array.luns[0], 0), (Bytes{0xFF}));
}

TEST(ArrayRecordsTest, AHealthyLunIsTheDefaultAndAccessFollowsTheOwner) {
  const ArrayModel array = Array(R"({"luns": [{}, {}, {"preferred": "B", "owner": "A", "paths": [
    {"controller": "A"}, {"controller": "B"}, {"controller": "B", "state": "failed"}, {"previousStatus": 9} ]}]})");
  const auto access = [&array](std::size_t lun, std::uint8_t owner) {
    const Bytes record = LunRecord(array.luns[lun], owner);
    Bytes read;
    for (const std::size_t path : {142U, 204U, 266U, 328U}) {
      read.insert(read.end(), {record[path + 12], record[path + 48], record[path + 49]});
    }
    return read;
  };
  EXPECT_EQ(access(2, 0), (Bytes{0, 0, 0, 1, 1, 1, 18, 18, 18, 1, 1, 9}));
  EXPECT_EQ(access(2, 1), (Bytes{1, 1, 1, 0, 0, 0, 18, 18, 18, 0, 0, 9}));
  EXPECT_EQ(access(1, 1), (Bytes{1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0}));
  // Normal, TPGS explicit, four paths, round robin with subset; owned and preferred by the second controller.
  const Bytes lun = LunRecord(array.luns[1], array.luns[1].owner);
  EXPECT_EQ(Bytes(lun.begin() + 90, lun.begin() + 110),
            (Bytes{1, 2, 4, 3, 0, 0, 0, 0, 1, 'S', 'N', '0', '0', '0', '0', '0', '0', '0', '1', 1}));
  EXPECT_EQ(array.devices.size(), 12U);
  EXPECT_EQ(LunRecord(Array(R"({"luns": [{"number": 5, "paths": []}]})").luns[0], 0)[181], 5);
}

} // namespace
} // namespace simhost
