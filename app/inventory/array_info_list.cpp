#include "app/cli/console/owned_store.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/gen2_records.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/inventory/list_readers.h"
#include "app/inventory/list_walk.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace korvex {

namespace {

/// Bytes of a converted array name that are kept, the terminator included.
constexpr std::size_t kArrayNameLimit = 60;

/// The listing is what a collection without a single array's report prints.
bool ListingWanted() {
  return !gDetailMode && gReportSelectionErrors;
}

/// Makes `array` the current array; false, with only its WWN taken over, when its name cannot be converted.
bool TakeOverArray(const ArrayInfoRecord& array, char* nameBuffer) {
  std::copy(array.wwn.begin(), array.wwn.end(), gModuleWWN);
  std::memset(nameBuffer, 0, kArrayNameLimit);
  if (platform::DefaultLocaleWcstombs(nameBuffer, array.name.data(), kArrayNameLimit) == static_cast<std::size_t>(-1)) {
    return false;
  }
  std::memcpy(gModuleName, nameBuffer, kArrayNameLimit);
  std::copy(array.interfaceTypes.begin(), array.interfaceTypes.end(), gInterfaceTypes);
  gSelectedArrayId = array.arrayId;
  gUtmLunEnabled = array.utmLunEnabled;
  gUtmLunNumber = array.utmLunNumber;
  gArrayLunCount = array.lunCount;
  gExtPathRecoveryEnabled = array.extPathRecoveryEnabled;
  gArrayControllerCount = array.controllerCount;
  return true;
}

/// Walks the list; false when a name that cannot be converted ended it.
bool WalkArrayInfoList(OrbWmiVariant& answer, std::span<std::uint8_t> receive, char* nameBuffer) {
  ListWalk walk;
  if (walk.OpenListClass(L"VRXDSM_ARRAY_INFO_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_ARRAY_INFO_LIST class\n");
    return true;
  }
  if (walk.OpenElementClass(L"VRXDSM_ARRAY_INFO") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_ARRAY_INFO class\n");
    return true;
  }
  if (walk.OpenAnswer(answer) != kWmiSuccess) {
    TracePrint("Error initializing arrayInfoListClass enum\n");
    return true;
  }
  if (!walk.OpenList()) {
    return true;
  }
  for (std::uint32_t i = 0; i < gNumberOfArrays; ++i) {
    if (!walk.NextRecord(receive, ListWalk::Length::kReceiveBuffer, ListWalk::NullBuffer::kIsZeros)) {
      break;
    }
    if (!TakeOverArray(ReadArrayInfoRecord(receive), nameBuffer)) {
      return false;
    }
    if (ListingWanted()) {
      gCollectionOutputs->printArraySummaryRow();
    }
  }
  return true;
}

} // namespace

int ReadArrayInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer) {
  const OwnedStore nameBuffer = MakeStore("arrayNameBuffer", kArrayNameLimit + 1);
  if (nameBuffer == nullptr) {
    return 0;
  }
  if (ListingWanted()) {
    gCollectionOutputs->printListingHead();
  }
  const bool namesConverted = WalkArrayInfoList(answer, std::span(receiveBuffer, kDsmArrayInfoCapacity),
                                                reinterpret_cast<char*>(nameBuffer.get()));
  if (namesConverted && ListingWanted()) {
    gCollectionOutputs->printListingClosingRule();
  }
  return 1;
}

} // namespace korvex
