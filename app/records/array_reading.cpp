#include "app/records/array_reading.h"

#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/limits.h"

#include <algorithm>

namespace korvex {

namespace {

/// Array ids of interface generation 2 have 8 bits.
constexpr std::uint64_t kArrayIds = 256;

} // namespace

void SelectArrayQuietly(std::uint32_t index) {
  gSelectionMode = kByArrayId;
  gSelectedArrayId = static_cast<std::uint8_t>(index);
  gNumberOfArrays = 1;
  gDetailMode = true;
  gReportSelectionErrors = false;
}

bool ReadArrayByIndex(std::uint32_t index) {
  // What an answer without an array leaves in place must not pass for its WWN.
  std::fill_n(gModuleWWN, kModuleWwnSlot, std::uint8_t{0});
  if (InterfaceGeneration() != 2) {
    return utilGetTargetName(index) == 1;
  }
  SelectArrayQuietly(index);
  gStatusScanActive = false;
  return GetDsmArrayInfo() == 1 && IsArrayNamed();
}

bool IsArrayNamed() {
  return std::any_of(gModuleWWN, gModuleWWN + kModuleWwnSlot, [](std::uint8_t byte) { return byte != 0; });
}

bool IsWwnTextWhole() {
  return std::all_of(gModuleWWN, gModuleWWN + kModuleWwnSlot, [](std::uint8_t byte) { return byte != 0; });
}

std::uint64_t IndexesFor(std::uint32_t count) {
  const std::uint64_t indexes = 4 * std::uint64_t{count};
  return InterfaceGeneration() == 2 ? std::min(indexes, kArrayIds) : indexes;
}

} // namespace korvex
