#include "app/inventory/gen2_stores.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/inventory/current_array.h"
#include "platform/allocation.h"

#include <utility>

namespace korvex {

unsigned char* gTpgInfoBuffer = nullptr;
unsigned char* gMpgInfoBuffer = nullptr;
unsigned char* gDevInfoBuffer = nullptr;
unsigned char* gCntrlSlNumber = nullptr;
unsigned char* gLunWWN = nullptr;
unsigned char* gLunPathId = nullptr;
unsigned char* gCntrlPathId = nullptr;
unsigned char* gLunPathDevInfo = nullptr;
unsigned char* gInterfaceTypes = nullptr;

static_assert(kMaxTpgRecords * kTpgRecordPlace <= kTpgInfoCapacity);
static_assert(kMaxMpgRecords * kMpgRecordPlace <= kMpgInfoCapacity);
static_assert(kMaxDevInfoRecords * kDevInfoRecordPlace <= kDevInfoCapacity);

namespace {

bool Ensure(unsigned char*& store, const char* storeName, std::size_t bytes) {
  if (store == nullptr) {
    store = static_cast<unsigned char*>(platform::AllocateStore(storeName, bytes));
  }
  return store != nullptr;
}

bool EnsureAll() {
  if (!Ensure(gTpgInfoBuffer, "gTpgInfoBuffer", kTpgInfoCapacity)) {
    PrintError("Unable to malloc memory for gTpgInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gMpgInfoBuffer, "gMpgInfoBuffer", kMpgInfoCapacity)) {
    PrintError("Unable to malloc memory for gMpgInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gDevInfoBuffer, "gDevInfoBuffer", kDevInfoCapacity)) {
    PrintError("Unable to malloc memory for gDevInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gCntrlSlNumber, "gCntrlSlNumber", 11)) {
    PrintError("Unable to malloc memory for gCntrlSlNumber - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gLunWWN, "gLunWWN", 32)) {
    PrintError("Unable to malloc memory for gLunWWN - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gLunPathId, "gLunPathId", 12)) {
    PrintError("Unable to malloc memory for gLunPathId - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gCntrlPathId, "gCntrlPathId", 12)) {
    PrintError("Unable to malloc memory for gCntrlPathId - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!Ensure(gLunPathDevInfo, "gLunPathDevInfo", 16)) {
    PrintError("Unable to malloc memory for gLunPathDevInfo - %s!\n", RuntimeErrorText());
    return false;
  }
  return true;
}

/// The bytes of one place of a store; none when the store or the place does not exist.
std::span<const std::uint8_t> Place(const unsigned char* store, std::uint32_t index, std::size_t placeSize,
                                    std::uint32_t places) {
  if (store == nullptr || index >= places) {
    return {};
  }
  return {store + placeSize * index, placeSize};
}

} // namespace

bool AllocateGen2Buffers() {
  if (EnsureAll()) {
    return true;
  }
  for (unsigned char** store : {&gTpgInfoBuffer, &gMpgInfoBuffer, &gDevInfoBuffer, &gCntrlSlNumber, &gLunWWN,
                                &gLunPathId, &gCntrlPathId, &gLunPathDevInfo}) {
    platform::FreeStore(std::exchange(*store, nullptr));
  }
  return false;
}

TpgControllerRecord StoredController(std::uint32_t index) {
  return ReadTpgControllerRecord(Place(gTpgInfoBuffer, index, kTpgRecordPlace, kMaxTpgRecords));
}

MpgDeviceRecord StoredLun(std::uint32_t index) {
  return ReadMpgDeviceRecord(Place(gMpgInfoBuffer, index, kMpgRecordPlace, kMaxMpgRecords));
}

DeviceInfoRecord StoredDevice(std::uint32_t index) {
  return ReadDeviceInfoRecord(Place(gDevInfoBuffer, index, kDevInfoRecordPlace, kMaxDevInfoRecords));
}

std::optional<MpgDeviceRecord> FindStoredLun(const WwnCharacters& wwn) {
  for (std::uint32_t index = 0; index < gArrayLunCount; ++index) {
    if (ReadMpgDeviceWwn(Place(gMpgInfoBuffer, index, kMpgRecordPlace, kMaxMpgRecords)) == wwn) {
      return StoredLun(index);
    }
  }
  return std::nullopt;
}

} // namespace korvex
