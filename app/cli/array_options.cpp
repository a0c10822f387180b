#include "app/cli/array_options.h"

#include "app/channel/channel.h"
#include "app/cli/console/numeric_input.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/limits.h"
#include "app/report/host_header.h"
#include "app/report/rdac_report.h"
#include "app/report/summary_listing.h"

#include <cstring>
#include <optional>

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

std::int32_t ReportArraysV2(const CommandLine& commandLine, std::int32_t status) {
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

/// The module id of the first module with this name.
std::optional<std::uint32_t> FindModule(const char* name) {
  for (std::uint32_t id = 0; id < MaxArrayModules; ++id) {
    if (utilGetTargetName(id) == 1 && std::strcmp(gModuleName, name) == 0) {
      TracePrint("found the matching module %d\n", static_cast<int>(id));
      return id;
    }
  }
  return std::nullopt;
}

/// The report of one module in interface generation 1: 1, or 0 when it could not be fetched.
std::int32_t ReportModule(std::uint32_t moduleId) {
  RdacInfoRequest request;
  if (GetRdacInfoForTarget(moduleId, request) != 1) {
    return 0;
  }
  PrintHostHeader();
  PrintRdacInfo(request);
  return 1;
}

std::int32_t ReportModuleByName(const char* name) {
  if (gModuleName == nullptr || gModuleWWN == nullptr) {
    const int made = InitModuleArrays();
    if (made != 1) {
      TracePrint("failure in initialization of Module Array.\n");
      return made;
    }
  }
  TracePrint("string passed = %s\n", name);
  const std::optional<std::uint32_t> moduleId = FindModule(name);
  if (moduleId) {
    return ReportModule(*moduleId);
  }
  PrintError("Array Name '%s' not found.\n", name);
  ListArrayModules();
  return 0;
}

} // namespace

std::int32_t ReportArrays(const CommandLine& commandLine, std::int32_t status) {
  if (InterfaceGeneration() == 2) {
    return ReportArraysV2(commandLine, status);
  }
  if (gOptionArgument != nullptr) {
    return ReportModuleByName(gOptionArgument);
  }
  PrintHostHeader();
  ListArrayModules();
  return status;
}

std::int32_t ReportArrayById(const CommandLine& commandLine, std::int32_t status) {
  if (IsValidInteger(gOptionArgument) != 1) {
    PrintError("This option accepts only valid integers.\n");
    return status;
  }
  if (InterfaceGeneration() != 2) {
    return ReportModule(LeadingDecimal(gOptionArgument));
  }
  if (BeginReport()) {
    SelectById(gOptionArgument);
    ReportSelectedArray(commandLine);
  }
  return status;
}

} // namespace korvex
