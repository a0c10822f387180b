#include "app/cli/controller_option.h"

#include "app/channel/channel.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/cli/usage.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/gen2_inventory.h"
#include "app/report/host_header.h"

#include <cstring>

namespace korvex {

namespace {

/// Ends the piece at its first comma; gives what follows, or none without a comma.
char* CutAtComma(char* piece) {
  char* comma = std::strchr(piece, ',');
  if (comma == nullptr) {
    return nullptr;
  }
  *comma = '\0';
  return comma + 1;
}

bool ReadControllerIndex(const char* piece, std::uint32_t& controllerIndex) {
  if (std::strlen(piece) != 1) {
    return false;
  }
  if (std::strchr("0Aa", *piece) != nullptr) {
    controllerIndex = 0;
    return true;
  }
  if (std::strchr("1Bb", *piece) != nullptr) {
    controllerIndex = 1;
    return true;
  }
  return false;
}

void ListSelectedController(const char* wwn, std::uint32_t controllerIndex) {
  gNumberOfArrays = 1;
  gSelectionMode = kByWwn;
  gDetailMode = true;
  gReportSelectionErrors = false;
  std::memcpy(gSelectionWwn, wwn, sizeof(gSelectionWwn));
  PrintHostHeaderV2();
  ListControllerLuns(controllerIndex);
}

} // namespace

ControllerWord SplitControllerWord(char* word, std::uint32_t& controllerIndex) {
  char* indexPiece = CutAtComma(word);
  if (indexPiece != nullptr) {
    CutAtComma(indexPiece);
  }
  if (std::strlen(word) != sizeof(gSelectionWwn)) {
    return ControllerWord::kBadWwn;
  }
  if (indexPiece == nullptr || !ReadControllerIndex(indexPiece, controllerIndex)) {
    return ControllerWord::kBadIndex;
  }
  return ControllerWord::kGood;
}

std::int32_t ReportController(const CommandLine&, std::int32_t) {
  std::uint32_t controllerIndex = 0;
  if (gOptionArgument == nullptr) {
    PrintUsage();
    return 0;
  }
  switch (SplitControllerWord(gOptionArgument, controllerIndex)) {
  case ControllerWord::kBadWwn:
    PrintError("Invalid WWN length\n");
    PrintUsage();
    return 0;
  case ControllerWord::kBadIndex:
    PrintError("Invalid index value\n");
    PrintUsage();
    return 0;
  case ControllerWord::kGood:
    break;
  }
  TracePrint("array_wwn: '%s'\n", gOptionArgument);
  TracePrint("controllerIndex: '%d'\n", static_cast<int>(controllerIndex));
  if (InterfaceGeneration() != 2) {
    return ListControllerLunsRdac(gOptionArgument, controllerIndex);
  }
  ListSelectedController(gOptionArgument, controllerIndex);
  return 1;
}

} // namespace korvex
