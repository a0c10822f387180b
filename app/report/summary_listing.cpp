#include "app/report/summary_listing.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/owned_store.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/inventory/wwn_text.h"
#include "app/report/interface_type_name.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <span>

namespace korvex {

namespace {

constexpr std::uint8_t kUnusedSlot = 255;

void PrintRule() {
  Print("---------------------------------------------------------------------------\n");
}

void PrintWwn() {
  if (InterfaceGeneration() == 2) {
    WwnCharacters characters;
    std::copy_n(gModuleWWN, characters.size(), characters.begin());
    PrintWwnCharacters(characters);
  } else {
    WwnBytes bytes;
    std::copy_n(gModuleWWN, bytes.size(), bytes.begin());
    PrintWwnBytes(bytes);
  }
  Print(" ");
}

/// Each interface type once, in order of first appearance, padded to a column that a long list overruns.
void PrintInterfaces(std::span<const std::uint8_t> codes) {
  std::bitset<256> shown;
  std::size_t width = 0;
  for (const std::uint8_t code : codes) {
    if (code == kUnusedSlot || shown.test(code)) {
      continue;
    }
    if (shown.any()) {
      Print(",");
      width += 2;
    }
    shown.set(code);
    const char* name = InterfaceTypeName(code);
    Print(" %s", name);
    width += std::strlen(name);
  }
  Print("  ");
  width += 2;
  if (width < 15) {
    Print("%*s", static_cast<int>(16 - width), "");
  }
}

/// The row of the array whose name and WWN stand in slot 0 of the module tables.
void PrintRow(std::uint32_t id, std::span<const std::uint8_t> interfaceTypes) {
  Print("%2u ", static_cast<unsigned>(id));
  PrintWwn();
  PrintInterfaces(interfaceTypes);
  Print("%s     ", gModuleName);
  Print("\n");
}

/// One row per module that can be read.
void PrintModuleRows(std::span<std::uint8_t> interfaceTypes) {
  for (std::uint32_t id = 0; id < MaxArrayModules; ++id) {
    if (utilGetTargetName(id, interfaceTypes) != 0) {
      PrintRow(id, interfaceTypes);
    }
  }
}

} // namespace

void PrintListingHead() {
  PrintRule();
  Print("Info of Array Module's seen by this Host. \n");
  PrintRule();
  if (InterfaceGeneration() == 2) {
    Print(" ID               WWN                Interface(s)    Name\n");
  } else {
    Print("ID      WWN           Interface(s)    Name\n");
  }
  PrintRule();
}

bool PrintArraySummaryRow() {
  if (gModuleWWN == nullptr) {
    return false;
  }
  PrintRow(gSelectedArrayId, std::span(gInterfaceTypes, kInterfaceTypesCapacity));
  return true;
}

void PrintListingClosingRule() {
  PrintRule();
}

int ListArrayModules() {
  if (gModuleName == nullptr || gModuleWWN == nullptr) {
    const int status = InitModuleArrays();
    if (status != 1) {
      TracePrint("failure in initialization of Module Array.\n");
      return status;
    }
  }
  if (gUtilMaxPaths == kUnknownLimit) {
    Ioctl(request::kGetMaxPathsSupported, &gUtilMaxPaths);
  }
  const std::uint64_t slots = 2 * std::uint64_t{gUtilMaxPaths};
  const OwnedStore interfaceTypes = MakeStore("interfaceTypes", slots);
  if (interfaceTypes == nullptr) {
    TracePrint("Could not allocate memory for interface type array.\n");
    return 0;
  }
  PrintListingHead();
  PrintModuleRows(std::span(interfaceTypes.get(), slots));
  PrintListingClosingRule();
  return 1;
}

} // namespace korvex
