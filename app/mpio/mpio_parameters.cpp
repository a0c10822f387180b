#include "app/mpio/mpio_parameters.h"

#include "app/channel/channel.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/mpio/dsm_counters.h"
#include "app/options/feature_option_reader.h"

#include <cstring>

namespace korvex {

namespace {

void PrintParameters(const DsmCounters& counters) {
  Print(" RetryInterval=0x%x", static_cast<unsigned>(counters.RetryInterval));
  Print(",PDORemovePeriod=0x%x", static_cast<unsigned>(counters.PDORemovePeriod));
  Print("\n");
}

void TakeItem(const char* keyword, std::uint32_t value, DsmCounters& counters) {
  if (std::strcmp(keyword, "RetryInterval") == 0) {
    counters.RetryInterval = value;
  } else if (std::strcmp(keyword, "PDORemovePeriod") == 0) {
    counters.PDORemovePeriod = value;
  } else if (std::strcmp(keyword, "GetMpioParameters") == 0) {
    PrintParameters(counters);
    counters.applyCounters = false;
  } else {
    TracePrint("Unknown keyword '%s'\n", keyword);
  }
}

/// False when an item is refused.
bool TakeItems(char* argument, DsmCounters& counters) {
  char keyword[kOptionKeywordLength + 1] = {};
  std::uint32_t value = 0;
  std::uint8_t isValueProvided = 0;
  int result = GetNextFeatureOption(argument, keyword, &value, &isValueProvided);
  while (result == 1) {
    TakeItem(keyword, value, counters);
    result = GetNextFeatureOption(nullptr, keyword, &value, &isValueProvided);
  }
  return result == 0;
}

/// 1, or 0 on failure; the channel's connection is open.
int ProcessOnOpenChannel(char* argument, MpioObjects& objects) {
  DsmCounters counters;
  switch (ReadDsmCounters(objects, counters)) {
  case CountersStep::kFailed:
    return 0;
  case CountersStep::kNotThere:
    return 1;
  case CountersStep::kDone:
    break;
  }
  if (!TakeItems(argument, counters)) {
    return 0;
  }
  return !counters.applyCounters || SetDsmCounters(objects, counters) ? 1 : 0;
}

} // namespace

int UtilpProcessMpioParameters() {
  TracePrint("UtilpProcessMpioParameters; entry\n");
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return -1;
  }
  TracePrint("Opened local connection\n");
  TracePrint("DSM Context = 0x%x\n", static_cast<unsigned>(gRequestedDsmContext));
  MpioObjects objects;
  const int result = ProcessOnOpenChannel(gOptionArgument, objects);
  gDsmChannel->connection.CloseConnection();
  return result;
}

} // namespace korvex
