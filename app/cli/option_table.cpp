#include "app/cli/option_table.h"

#include "app/channel/channel.h"
#include "app/channel/control_requests.h"
#include "app/channel/dsm_selection.h"
#include "app/cli/array_options.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/cli/controller_option.h"
#include "app/cli/usage.h"
#include "app/mpio/disk_mapping.h"
#include "app/mpio/mpio_parameters.h"
#include "app/options/feature_options.h"
#include "app/records/record_deletion.h"
#include "app/records/status_scan.h"
#include "app/report/host_header.h"
#include "app/settings/policy_removal.h"
#include "app/settings/settings_removal.h"
#include "wmi/wmi_layer_trace.h"

#include <algorithm>
#include <iterator>

namespace korvex {

namespace {

/// Which word behind it an option picks up for itself.
enum class PickedWord : std::uint8_t {
  kNone,     ///< no word; the scanner may have collected an argument
  kPlain,    ///< the next word unless it begins with '-'; scanning ends there
  kConsumed, ///< the same word, and scanning goes on behind it
  kAny,      ///< the next word, whatever it begins with
};

using OptionAction = std::int32_t(const CommandLine& commandLine, std::int32_t status);

struct OptionRow {
  char letter;
  PickedWord word;
  OptionAction* act;
};

std::int32_t SetDebugLevel(const CommandLine&, std::int32_t) {
  return SetDriverLevel(DriverLevel::kDebug, gOptionArgument);
}

std::int32_t SetErrorLevel(const CommandLine&, std::int32_t) {
  return SetDriverLevel(DriverLevel::kError, gOptionArgument);
}

std::int32_t Scan(const CommandLine&, std::int32_t) {
  return PerformScan(gOptionArgument);
}

std::int32_t ActOnFeatureOptions(const CommandLine&, std::int32_t) {
  return ProcessFeatureOptions();
}

std::int32_t ActOnMpioParameters(const CommandLine&, std::int32_t) {
  TracePrint("ProcessMpioParameters('%s')\n", gOptionArgument);
  return UtilpProcessMpioParameters();
}

std::int32_t RemoveSettings(const CommandLine&, std::int32_t) {
  return InterfaceGeneration() == 2 ? UtilpRemoveDeviceSpecificSettings() : regRemoveInactiveLBPSettings();
}

std::int32_t MapDisks(const CommandLine&, std::int32_t) {
  TracePrint("ShowMpioMappings\n");
  return ShowMpioMappings();
}

void PrintHeaderOfGeneration() {
  if (InterfaceGeneration() == 2) {
    PrintHostHeaderV2();
  } else {
    PrintHostHeader();
  }
}

std::int32_t DeleteRecords(const CommandLine&, std::int32_t) {
  PrintHeaderOfGeneration();
  return gOptionArgument == nullptr ? utilDeleteWWNList() : utilDeleteMissingWWNFiles();
}

std::int32_t ScanStatus(const CommandLine&, std::int32_t) {
  PrintHeaderOfGeneration();
  return utilArrayStatusScan();
}

std::int32_t SelectDsm(const CommandLine& commandLine, std::int32_t) {
  return HandleDsmOption(commandLine.wordCount, commandLine.words);
}

std::int32_t OpenTrace(const CommandLine&, std::int32_t status) {
  gTraceEnabled = true;
  WmiLayerTrace::Instance().SetCategoryThreshold(0xFFFFFFFF);
  WmiLayerTrace::Instance().SetLevelThreshold(0xFFFFFFFF);
  return status;
}

/// Letters without a row get the usage text.
constexpr OptionRow kOptions[] = {
    {'a', PickedWord::kPlain, ReportArrays},
    {'c', PickedWord::kPlain, DeleteRecords},
    {'d', PickedWord::kNone, SetDebugLevel},
    {'e', PickedWord::kNone, SetErrorLevel},
    {'g', PickedWord::kPlain, ReportArrayById},
    {'o', PickedWord::kConsumed, ActOnFeatureOptions},
    {'s', PickedWord::kNone, Scan},
    {'S', PickedWord::kNone, ScanStatus},
    {'t', PickedWord::kNone, OpenTrace},
    {'w', PickedWord::kAny, ReportController},
    {'D', PickedWord::kPlain, SelectDsm},
    {'M', PickedWord::kNone, MapDisks},
    {'R', PickedWord::kNone, RemoveSettings},
    {'P', PickedWord::kNone, ActOnMpioParameters},
};

void PickUpWord(PickedWord use, const CommandLine& commandLine) {
  if (use == PickedWord::kNone) {
    return;
  }
  char* word = commandLine.WordAt(gOptionIndex);
  if (use != PickedWord::kAny && word != nullptr && word[0] == '-') {
    word = nullptr;
  }
  gOptionArgument = word;
  if (use == PickedWord::kConsumed && word != nullptr) {
    ++gOptionIndex;
  }
}

} // namespace

void FormatOptionLetters(char* buffer, std::size_t capacity) {
  BoundedFormat(buffer, capacity, "%s%s", "agchtmlowd:e:s:S", "DMRP:");
}

std::int32_t ActOnOption(int letter, const CommandLine& commandLine, std::int32_t status) {
  const auto* row = std::find_if(std::begin(kOptions), std::end(kOptions),
                                 [letter](const OptionRow& option) { return option.letter == letter; });
  if (row == std::end(kOptions)) {
    PrintUsage();
    return 0;
  }
  PickUpWord(row->word, commandLine);
  return row->act(commandLine, status);
}

} // namespace korvex
