#include "app/inventory/gen2_records.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

namespace korvex {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// The last field of each kind of record and entry, at offsets that the layouts give: byte n is n modulo 251 there.
TEST(Gen2Records, FieldsStandAtTheirOffsets) {
  Bytes bytes(TpgControllerRecord::kSize);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(i % 251);
  }
  const ArrayInfoRecord array = ReadArrayInfoRecord(bytes);
  EXPECT_EQ(std::tuple(array.wwn[31], array.interfaceTypes[63], array.utmLunNumber, array.controllerCount),
            std::tuple(39, 163, 167, 0xAFAEADACU));
  // From 41 on, two bytes a unit, up to the interface codes at 100.
  EXPECT_EQ(std::tuple(array.name[0], array.name[28], array.name[29]), std::tuple(L'\x2A29', L'\x6261', L'\0'));

  const TpgControllerRecord controller = ReadTpgControllerRecord(bytes);
  EXPECT_EQ(std::string(controller.serialNumber.data()), "\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x10\x11");
  EXPECT_EQ(std::tuple(controller.numberOfPaths, controller.designation), std::tuple(18, 21));
  // The last entry begins at 32 + 228 x 31 = 7100, which is 72 modulo 251.
  const TpgPathEntry& port = controller.paths[31];
  EXPECT_EQ(std::tuple(port.congestionPresent, port.pathState, port.congestionStartTime, port.ioResponseTotal),
            std::tuple(72, 73, 0x4F4E4D4CU, 0x63626160U));
  EXPECT_EQ(std::tuple(port.pathId, port.pathIdExtension), std::tuple(0x6B6A696867666564U, 0x6F6E6D6CU));

  const MpgDeviceRecord lun = ReadMpgDeviceRecord(bytes);
  EXPECT_EQ(std::tuple(lun.state, lun.owningDesignation, lun.preferredDesignation, lun.throttled, lun.albStatus),
            std::tuple(90, 98, 109, 130, 140));
  EXPECT_EQ(std::string(lun.preferredSerialNumber.data()), "nopqrstuvw");
  EXPECT_EQ(std::tuple(lun.internalState, lun.tasBitStatus), std::tuple(0x87868584U, 0x8B8A8988U));
  // The first entry begins at 142.
  const MpgPathEntry& path = lun.paths[0];
  EXPECT_EQ(std::tuple(path.pathId, path.pathIdExtension, path.accessState, path.deviceInfo[15], path.pathWeight),
            std::tuple(0x9594939291908F8EU, 0x99989796U, 154, 170, 171));
  EXPECT_EQ(std::tuple(path.scsiAddress.length, path.scsiAddress.port, path.scsiAddress.lun, path.lastGoodState),
            std::tuple(0xB1B0AFAEU, 178, 181, 190));
  EXPECT_EQ(std::tuple(path.requestsInProgress, path.flags[5], path.internalState),
            std::tuple(0xC1C0, 199, 0xCBCAC9C8U));
  EXPECT_EQ(lun.paths[31].accessState, (142 + 62 * 31 + 12) % 251);
}

/// Each cut record stands in a block of exactly its size, so that the sanitizer sees a read behind it.
TEST(Gen2Records, WhatAShortRecordLacksIsZero) {
  const Bytes full(TpgControllerRecord::kSize, 0xFF);
  for (std::size_t size = 0; size <= full.size(); ++size) {
    const Bytes cut(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(size));
    const TpgControllerRecord controller = ReadTpgControllerRecord(cut);
    EXPECT_EQ(controller.designation, size > 21 ? 0xFF : 0) << size;
    EXPECT_EQ(controller.paths[31].pathIdExtension == 0xFFFFFFFF, size >= 7140) << size;
    const MpgDeviceRecord lun = ReadMpgDeviceRecord(cut);
    EXPECT_EQ(lun.paths[31].internalState == 0xFFFFFFFF, size >= 2126) << size;
    EXPECT_EQ(ReadArrayInfoRecord(cut).controllerCount == 0xFFFFFFFF, size >= 176) << size;
  }
  const Bytes half(34, 0xFF);
  EXPECT_EQ(std::tuple(ReadMpgDeviceRecord(half).wwn[25], ReadMpgDeviceRecord(half).wwn[26]), std::tuple(0xFF, 0));
}

} // namespace
} // namespace korvex
