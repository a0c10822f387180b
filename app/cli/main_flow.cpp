#include "app/cli/main_flow.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/end_of_run.h"
#include "app/cli/option_scanner.h"
#include "app/cli/option_table.h"
#include "app/cli/usage.h"
#include "app/cli/wiring.h"

#include <cstdint>
#include <exception>

namespace korvex {

namespace {

constexpr int kInitializationFailed = -1;
constexpr std::int32_t kRunEnds = -1;
constexpr std::int32_t kStarted = 1;

/// The channel starts before the options are acted on, so a DSM named first of all is picked out here.
void PickCommandLineDsm(const CommandLine& commandLine) {
  const char* word = commandLine.WordAt(gOptionIndex);
  if (word == nullptr || word[0] == '-') {
    return;
  }
  BoundedCopy(gCommandLineDsm.name, sizeof(gCommandLineDsm.name), word);
  gCommandLineDsm.isSet = true;
}

/// Acts on `option` and all that follow it.
std::int32_t ActOnOptions(int option, const CommandLine& commandLine, const char* optionLetters, std::int32_t status) {
  while (option != kEndOfOptions) {
    status = ActOnOption(option, commandLine, status);
    if (status == kRunEnds) {
      break;
    }
    option = getopt(commandLine.wordCount, commandLine.words, optionLetters);
  }
  return status;
}

} // namespace

int RunKorvex(int wordCount, char** words) {
  const CommandLine commandLine = {wordCount, words};
  ResetRunState();
  ConnectRooms();
  gProgramName = commandLine.WordAt(0);
  char optionLetters[80];
  FormatOptionLetters(optionLetters, sizeof(optionLetters));
  const int firstOption = getopt(wordCount, words, optionLetters);
  if (firstOption == kEndOfOptions) {
    PrintError("No Options supplied\n");
    PrintUsage();
  } else if (firstOption == 'D') {
    PickCommandLineDsm(commandLine);
  }
  if (!StartChannel()) {
    PrintError("Initialization failed\n");
    return kInitializationFailed;
  }
  std::int32_t status = kStarted;
  if (InterfaceGeneration() == 2) {
    status = utilGetDsmDriverVersion();
  }
  status = ActOnOptions(firstOption, commandLine, optionLetters, status);
  FreeRunBuffers();
  FlushConsole();
  return status;
}

int RunGuarded(int (*run)(int wordCount, char** words), int wordCount, char** words) noexcept {
  int status = kInitializationFailed;
  try {
    status = run(wordCount, words);
  } catch (const std::exception& failure) {
    PrintError("The run cannot go on: %s\n", failure.what());
  }
  FlushConsole();
  return status;
}

} // namespace korvex
