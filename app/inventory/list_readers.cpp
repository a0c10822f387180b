#include "app/inventory/list_readers.h"

#include "app/cli/console/trace.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/list_walk.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace korvex {

std::uint8_t gUtmLunEnabled = 0;
std::uint8_t gUtmLunNumber = 0;
std::uint8_t gExtPathRecoveryEnabled = 0;
std::uint32_t gArrayLunCount = 0;
std::uint32_t gArrayControllerCount = 0;
std::uint32_t gTpgRecordSize = 0;
std::uint32_t gDevInfoCount = 0;
std::uint32_t gDevInfoRecordSize = 0;

int ReadTpgInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer) {
  const std::uint32_t bound = std::min(std::exchange(gArrayControllerCount, 0), kMaxTpgRecords);
  ListWalk walk;
  if (walk.OpenListClass(L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST class\n");
    return 0;
  }
  if (walk.OpenElementClass(L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_TARGET_PORT_GROUP_CONTROLLER class\n");
    return 0;
  }
  if (walk.OpenAnswer(answer) != kWmiSuccess) {
    TracePrint("Error initializing tpgInfoListClass enum\n");
    return 0;
  }
  if (!walk.OpenList()) {
    TracePrint("Error initializing initializeArrayEnumerator\n");
    return 0;
  }
  const std::span receive(receiveBuffer, kDsmTpgInfoCapacity);
  while (gArrayControllerCount < bound &&
         walk.NextRecord(receive, ListWalk::Length::kElementSize, ListWalk::NullBuffer::kEndsWalk)) {
    const std::size_t place = kTpgRecordPlace * gArrayControllerCount;
    if (walk.Size() > kTpgInfoCapacity - place) {
      break;
    }
    std::memcpy(gTpgInfoBuffer + place, receiveBuffer, kTpgRecordPlace);
    gTpgRecordSize = walk.Size();
    ++gArrayControllerCount;
  }
  return 1;
}

int ReadMpgInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer) {
  const std::uint32_t bound = std::min(std::exchange(gArrayLunCount, 0), kMaxMpgRecords);
  ListWalk walk;
  if (walk.OpenListClass(L"VRXDSM_MULTIPATH_DEVICE_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_MULTIPATH_DEVICE_LIST class\n");
    return 0;
  }
  if (walk.OpenElementClass(L"VRXDSM_MULTIPATH_DEVICE") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_MULTIPATH_DEVICE class\n");
    return 0;
  }
  if (walk.OpenAnswer(answer) != kWmiSuccess) {
    TracePrint("Error initializing mpgInfoListClass enum\n");
    return 0;
  }
  if (!walk.OpenList()) {
    return 1;
  }
  const std::span receive(receiveBuffer, kDsmMpgInfoCapacity);
  while (gArrayLunCount < bound &&
         walk.NextRecord(receive, ListWalk::Length::kReceiveBuffer, ListWalk::NullBuffer::kEndsWalk)) {
    std::memcpy(gMpgInfoBuffer + kMpgRecordPlace * gArrayLunCount, receiveBuffer, kMpgRecordPlace);
    ++gArrayLunCount;
  }
  return 1;
}

int ReadDevInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer) {
  gDevInfoCount = 0;
  ListWalk walk;
  if (walk.OpenListClass(L"VRXDSM_DEVICE_INFO_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_DEVICE_INFO_LIST class\n");
    return 0;
  }
  if (walk.OpenElementClass(L"VRXDSM_DEVICE_INFO") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_DEVICE_INFO class\n");
    return 0;
  }
  if (walk.OpenAnswer(answer) != kWmiSuccess) {
    TracePrint("Error initializing devInfoListClass enum\n");
    return 0;
  }
  if (!walk.OpenList()) {
    TracePrint("Error initializing initializeArrayEnumerator\n");
    return 0;
  }
  const std::span receive(receiveBuffer, kDsmDevInfoCapacity);
  while (gDevInfoCount < kMaxDevInfoRecords &&
         walk.NextRecord(receive, ListWalk::Length::kElementSize, ListWalk::NullBuffer::kIsZeros)) {
    std::memcpy(gDevInfoBuffer + kDevInfoRecordPlace * gDevInfoCount, receiveBuffer, kDevInfoRecordPlace);
    gDevInfoRecordSize = walk.Size();
    ++gDevInfoCount;
  }
  return 1;
}

} // namespace korvex
