#include "app/report/summary_listing.h"

#include "app/channel/channel.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
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
    for (const std::uint8_t byte : std::span(gModuleWWN, 16)) {
      Print("%02x", byte);
    }
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
  Print("%2u ", static_cast<unsigned>(gSelectedArrayId));
  PrintWwn();
  PrintInterfaces(std::span(gInterfaceTypes, kInterfaceTypesCapacity));
  Print("%s     ", gModuleName);
  Print("\n");
  return true;
}

void PrintListingClosingRule() {
  PrintRule();
}

} // namespace korvex
