#include "app/inventory/gen2_records.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvex {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A record whose byte at offset n is n modulo 251, so that each field of a few bytes has a value of its own.
Bytes CountingRecord(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<std::uint8_t>(i % 251);
  }
  return bytes;
}

void PutUtf16(Bytes& bytes, std::size_t offset, std::u16string_view text) {
  for (const char16_t unit : text) {
    bytes.at(offset++) = static_cast<std::uint8_t>(unit & 0xFF);
    bytes.at(offset++) = static_cast<std::uint8_t>(unit >> 8);
  }
}

TEST(Gen2Records, ArrayFieldsStandAtTheirOffsets) {
  Bytes bytes = CountingRecord(ArrayInfoRecord::kSize);
  PutUtf16(bytes, 41, std::u16string_view(u"Depot\0", 6));
  const ArrayInfoRecord array = ReadArrayInfoRecord(bytes);
  EXPECT_EQ(array.wwn[0], 8);
  EXPECT_EQ(array.wwn[31], 39);
  EXPECT_STREQ(array.name.data(), L"Depot");
  EXPECT_EQ(array.interfaceTypes[0], 100);
  EXPECT_EQ(array.interfaceTypes[63], 163);
  EXPECT_EQ(array.arrayId, 164);
  EXPECT_EQ(array.extPathRecoveryEnabled, 165);
  EXPECT_EQ(array.utmLunEnabled, 166);
  EXPECT_EQ(array.utmLunNumber, 167);
  EXPECT_EQ(array.lunCount, 0xABAAA9A8U);
  EXPECT_EQ(array.controllerCount, 0xAFAEADACU);
}

TEST(Gen2Records, ArrayNameEndsBeforeTheInterfaceSlots) {
  struct Row {
    const char* what;
    std::u16string name;
    std::size_t expectedLength;
  };
  const Row rows[] = {
      {"empty", std::u16string(1, u'\0'), 0},
      {"longest with a terminator", std::u16string(28, u'n') + u'\0', 28},
      {"without a terminator", std::u16string(29, u'n'), 29},
  };
  for (const Row& row : rows) {
    Bytes bytes(ArrayInfoRecord::kSize, 0x41);
    PutUtf16(bytes, 41, row.name);
    const ArrayInfoRecord array = ReadArrayInfoRecord(bytes);
    EXPECT_EQ(std::wstring(array.name.data()), std::wstring(row.expectedLength, L'n')) << row.what;
  }
}

TEST(Gen2Records, NamesKeepEachUtf16Unit) {
  Bytes bytes(ArrayInfoRecord::kSize);
  PutUtf16(bytes, 41, std::u16string{0x00E9, 0xD800, 0x20AC, 0xDC00});
  const std::array<wchar_t, 30> name = ReadArrayInfoRecord(bytes).name;
  EXPECT_EQ(std::wstring(name.data()), (std::wstring{0x00E9, 0xD800, 0x20AC, 0xDC00}));
}

TEST(Gen2Records, ControllerFieldsStandAtTheirOffsets) {
  Bytes bytes = CountingRecord(TpgControllerRecord::kSize);
  const std::size_t lastEntry = 32 + 228 * 31; // 7100, which is 72 modulo 251
  const TpgControllerRecord controller = ReadTpgControllerRecord(bytes);
  EXPECT_EQ(std::string(controller.serialNumber.data()), "\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x10\x11");
  EXPECT_EQ(controller.numberOfPaths, 18);
  EXPECT_EQ(controller.serviceMode, 19);
  EXPECT_EQ(controller.state, 20);
  EXPECT_EQ(controller.designation, 21);
  const TpgPathEntry& path = controller.paths[0];
  EXPECT_EQ(path.congestionPresent, 32);
  EXPECT_EQ(path.pathState, 33);
  EXPECT_EQ(path.interfaceType, 34);
  EXPECT_EQ(path.congestionStartTime, 0x27262524U);
  EXPECT_EQ(path.congestionIntervalCount, 0x2B2A2928U);
  EXPECT_EQ(path.ioExceededCount, 0x2F2E2D2CU);
  EXPECT_EQ(path.populationSize, 0x33323130U);
  EXPECT_EQ(path.avgIoResponse, 0x37363534U);
  EXPECT_EQ(path.ioResponseTotal, 0x3B3A3938U);
  EXPECT_EQ(path.pathId, 0x434241403F3E3D3CU);
  EXPECT_EQ(path.pathIdExtension, 0x47464544U);
  EXPECT_EQ(controller.paths[31].congestionPresent, lastEntry % 251);
  EXPECT_EQ(controller.paths[31].pathIdExtension, 0x6F6E6D6CU);
}

TEST(Gen2Records, LunFieldsStandAtTheirOffsets) {
  Bytes bytes = CountingRecord(MpgDeviceRecord::kSize);
  PutUtf16(bytes, 40, std::u16string_view(u"VND     PRODUCT-7\0", 18));
  const MpgDeviceRecord lun = ReadMpgDeviceRecord(bytes);
  EXPECT_EQ(lun.wwn[0], 8);
  EXPECT_EQ(lun.wwn[31], 39);
  EXPECT_STREQ(lun.vendorProduct.data(), L"VND     PRODUCT-7");
  EXPECT_EQ(lun.state, 90);
  EXPECT_EQ(lun.failoverMethod, 91);
  EXPECT_EQ(lun.numberOfPaths, 92);
  EXPECT_EQ(lun.loadBalancePolicy, 93);
  EXPECT_EQ(lun.persistThroughPowerLoss, 94);
  EXPECT_EQ(lun.persistThroughPowerLossSent, 95);
  EXPECT_EQ(lun.owningDesignation, 98);
  EXPECT_EQ(std::string(lun.owningSerialNumber.data()), "cdefghijkl");
  EXPECT_EQ(lun.preferredDesignation, 109);
  EXPECT_EQ(std::string(lun.preferredSerialNumber.data()), "nopqrstuvw");
  EXPECT_EQ(std::string(lun.diskName.data()), "xyz{|}~\x7f\x80\x81");
  EXPECT_EQ(lun.throttled, 130);
  EXPECT_EQ(lun.groupIoThrottled, 131);
  EXPECT_EQ(lun.internalState, 0x87868584U);
  EXPECT_EQ(lun.tasBitStatus, 0x8B8A8988U);
  EXPECT_EQ(lun.albStatus, 140);
  EXPECT_EQ(lun.LunNumber(), 181);
}

TEST(Gen2Records, LunPathFieldsStandAtTheirOffsets) {
  const MpgDeviceRecord lun = ReadMpgDeviceRecord(CountingRecord(MpgDeviceRecord::kSize));
  const MpgPathEntry& path = lun.paths[0]; // begins at 142, 0x8E
  EXPECT_EQ(path.pathId, 0x959493929190'8F8EU);
  EXPECT_EQ(path.pathIdExtension, 0x99989796U);
  EXPECT_EQ(path.accessState, 154);
  EXPECT_EQ(path.deviceInfo[0], 155);
  EXPECT_EQ(path.deviceInfo[15], 170);
  EXPECT_EQ(path.pathWeight, 171);
  EXPECT_EQ(path.scsiAddress.length, 0xB1B0AFAEU);
  EXPECT_EQ(path.scsiAddress.port, 178);
  EXPECT_EQ(path.scsiAddress.path, 179);
  EXPECT_EQ(path.scsiAddress.target, 180);
  EXPECT_EQ(path.scsiAddress.lun, 181);
  EXPECT_EQ(path.lastGoodState, 190);
  EXPECT_EQ(path.previousStatus, 191);
  EXPECT_EQ(path.requestsInProgress, 0xC1C0U);
  EXPECT_EQ(path.flags, (std::array<std::uint8_t, 6>{194, 195, 196, 197, 198, 199}));
  EXPECT_EQ(path.internalState, 0xCBCAC9C8U);
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
  EXPECT_EQ(ReadMpgDeviceRecord(half).wwn[25], 0xFF);
  EXPECT_EQ(ReadMpgDeviceRecord(half).wwn[26], 0);
  EXPECT_EQ(ReadArrayInfoRecord(Bytes(174, 0xFF)).controllerCount, 0xFFFFU);
}

TEST(Gen2Records, PathsInUseStopAtTheEntriesThereAre) {
  for (const int announced : {0, 1, 32, 33, 255}) {
    Bytes bytes(TpgControllerRecord::kSize);
    bytes[18] = static_cast<std::uint8_t>(announced);
    bytes[92] = static_cast<std::uint8_t>(announced);
    const auto expected = static_cast<std::size_t>(std::min(announced, 32));
    EXPECT_EQ(ReadTpgControllerRecord(bytes).PathsInUse().size(), expected) << announced;
    EXPECT_EQ(ReadMpgDeviceRecord(bytes).PathsInUse().size(), expected) << announced;
    EXPECT_EQ(ReadTpgControllerRecord(bytes).numberOfPaths, announced);
    EXPECT_EQ(ReadMpgDeviceRecord(bytes).numberOfPaths, announced);
  }
}

} // namespace
} // namespace korvex
