#include "app/inventory/gen2_records.h"

#include "app/inventory/record_bytes.h"

#include <algorithm>

namespace korvex {

namespace {

constexpr std::size_t kTpgPathEntriesOffset = 32;
constexpr std::size_t kMpgPathEntriesOffset = 142;

static_assert(TpgControllerRecord::kSize == 7328);
static_assert(MpgDeviceRecord::kSize == 2126);

TpgPathEntry ReadTpgPathEntry(const RecordBytes& entry) {
  TpgPathEntry path{};
  path.congestionPresent = entry.U8(0);
  path.pathState = entry.U8(1);
  path.interfaceType = entry.U8(2);
  path.congestionStartTime = entry.U32(4);
  path.congestionIntervalCount = entry.U32(8);
  path.ioExceededCount = entry.U32(12);
  path.populationSize = entry.U32(16);
  path.avgIoResponse = entry.U32(20);
  path.ioResponseTotal = entry.U32(24);
  path.pathId = entry.U64(28);
  path.pathIdExtension = entry.U32(36);
  return path;
}

MpgPathEntry ReadMpgPathEntry(const RecordBytes& entry) {
  MpgPathEntry path{};
  path.pathId = entry.U64(0);
  path.pathIdExtension = entry.U32(8);
  path.accessState = entry.U8(12);
  path.deviceInfo = entry.Bytes<16>(13);
  path.pathWeight = entry.U8(29);
  path.scsiAddress = {entry.U32(32), entry.U8(36), entry.U8(37), entry.U8(38), entry.U8(39)};
  path.lastGoodState = entry.U8(48);
  path.previousStatus = entry.U8(49);
  path.requestsInProgress = entry.U16(50);
  path.flags = entry.Bytes<6>(52);
  path.internalState = entry.U32(58);
  return path;
}

} // namespace

ArrayInfoRecord ReadArrayInfoRecord(std::span<const std::uint8_t> bytes) {
  const RecordBytes record(bytes);
  ArrayInfoRecord array{};
  array.wwn = record.Bytes<32>(8);
  array.name = record.Utf16<59>(41);
  array.interfaceTypes = record.Bytes<64>(100);
  array.arrayId = record.U8(164);
  array.extPathRecoveryEnabled = record.U8(165);
  array.utmLunEnabled = record.U8(166);
  array.utmLunNumber = record.U8(167);
  array.lunCount = record.U32(168);
  array.controllerCount = record.U32(172);
  return array;
}

TpgControllerRecord ReadTpgControllerRecord(std::span<const std::uint8_t> bytes) {
  const RecordBytes record(bytes);
  TpgControllerRecord controller{};
  controller.serialNumber = record.Characters<10>(8);
  controller.numberOfPaths = record.U8(18);
  controller.serviceMode = record.U8(19);
  controller.state = record.U8(20);
  controller.designation = record.U8(21);
  for (std::size_t i = 0; i < kPathEntries; ++i) {
    controller.paths[i] = ReadTpgPathEntry(record.Part(kTpgPathEntriesOffset + TpgPathEntry::kSize * i));
  }
  return controller;
}

std::span<const TpgPathEntry> TpgControllerRecord::PathsInUse() const {
  return std::span(paths).first(std::min<std::size_t>(numberOfPaths, kPathEntries));
}

WwnCharacters ReadMpgDeviceWwn(std::span<const std::uint8_t> bytes) {
  return RecordBytes(bytes).Bytes<32>(8);
}

MpgDeviceRecord ReadMpgDeviceRecord(std::span<const std::uint8_t> bytes) {
  const RecordBytes record(bytes);
  MpgDeviceRecord lun{};
  lun.wwn = record.Bytes<32>(8);
  lun.vendorProduct = record.Utf16<50>(40);
  lun.state = record.U8(90);
  lun.failoverMethod = record.U8(91);
  lun.numberOfPaths = record.U8(92);
  lun.loadBalancePolicy = record.U8(93);
  lun.persistThroughPowerLoss = record.U8(94);
  lun.persistThroughPowerLossSent = record.U8(95);
  lun.owningDesignation = record.U8(98);
  lun.owningSerialNumber = record.Characters<10>(99);
  lun.preferredDesignation = record.U8(109);
  lun.preferredSerialNumber = record.Characters<10>(110);
  lun.diskName = record.Characters<10>(120);
  lun.throttled = record.U8(130);
  lun.groupIoThrottled = record.U8(131);
  lun.internalState = record.U32(132);
  lun.tasBitStatus = record.U32(136);
  lun.albStatus = record.U8(140);
  for (std::size_t i = 0; i < kPathEntries; ++i) {
    lun.paths[i] = ReadMpgPathEntry(record.Part(kMpgPathEntriesOffset + MpgPathEntry::kSize * i));
  }
  return lun;
}

std::span<const MpgPathEntry> MpgDeviceRecord::PathsInUse() const {
  return std::span(paths).first(std::min<std::size_t>(numberOfPaths, kPathEntries));
}

DeviceInfoRecord ReadDeviceInfoRecord(std::span<const std::uint8_t> bytes) {
  const RecordBytes record(bytes);
  return {record.U8(40), record.U8(41), record.U8(56), record.U8(57), record.U8(58), record.U8(59)};
}

} // namespace korvex
