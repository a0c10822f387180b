#include "app/cli/array_options.h"

#include "app/channel/channel.h"
#include "app/cli/console/numeric_input.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/inventory/gen2_inventory.h"
#include "app/report/host_header.h"

#include <cstring>

namespace korvex {

namespace {

/// Asks the DSM how many arrays there are and prints the head of the report; false, with a line that says so, when
/// there are none.
bool BeginReport() {
  GetCurrentNumberOfArrays();
  PrintHostHeaderV2();
  if (gNumberOfArrays == 0) {
    Print("No Array Module's are seen by this Host.\n\n");
    return false;
  }
  return true;
}

void SelectById(const char* word) {
  gSelectionMode = kByArrayId;
  gSelectedArrayId = static_cast<std::uint8_t>(LeadingDecimal(word));
}

/// A word as long as a WWN is one; any other is an id.
void SelectByWord(const char* word) {
  if (std::strlen(word) != sizeof(gSelectionWwn)) {
    SelectById(word);
    return;
  }
  gSelectionMode = kByWwn;
  std::memcpy(gSelectionWwn, word, sizeof(gSelectionWwn));
}

/// The report of the one selected array; the word behind its name may ask for the extended one.
void ReportSelectedArray(const CommandLine& commandLine) {
  const char* form = commandLine.WordAt(gOptionIndex + 1);
  if (form != nullptr && std::strstr(form, "extended") != nullptr) {
    gExtendedReport = true;
  }
  gNumberOfArrays = 1;
  gDetailMode = true;
  GetDsmArrayInfo();
}

} // namespace

std::int32_t ReportArrays(const CommandLine& commandLine, std::int32_t status) {
  if (InterfaceGeneration() != 2) {
    return status;
  }
  if (gOptionArgument == nullptr) {
    gSelectionMode = kAllArrays;
    if (BeginReport()) {
      GetDsmArrayInfo();
    }
    return status;
  }
  SelectByWord(gOptionArgument);
  if (BeginReport()) {
    ReportSelectedArray(commandLine);
  }
  return status;
}

std::int32_t ReportArrayById(const CommandLine& commandLine, std::int32_t status) {
  if (IsValidInteger(gOptionArgument) != 1) {
    PrintError("This option accepts only valid integers.\n");
    return status;
  }
  if (InterfaceGeneration() == 2 && BeginReport()) {
    SelectById(gOptionArgument);
    ReportSelectedArray(commandLine);
  }
  return status;
}

} // namespace korvex
