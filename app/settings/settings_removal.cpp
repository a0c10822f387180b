#include "app/settings/settings_removal.h"

#include "app/channel/channel.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/limits.h"
#include "app/options/dsm_parameters.h"
#include "app/settings/removal_confirmation.h"
#include "wmi/trace_text.h"

#include <cwchar>

namespace korvex {

DsmKeyList gDsmParameterKeys;
std::uint32_t gRemovedKeyCount = 0;

namespace {

enum class Reported { kArrays, kNoArrays, kNothing };

/// Whether the DSM reports arrays at all, on the open channel.
Reported AskForArrays() {
  gNumberOfArrays = kUnknownLimit;
  MethodOutcome outcome = MethodOutcome::kUnknown;
  GetCurrentNumberOfArrays(&outcome);
  if (outcome != MethodOutcome::kAnswered || gNumberOfArrays == kUnknownLimit) {
    return Reported::kNothing;
  }
  return gNumberOfArrays == 0 ? Reported::kNoArrays : Reported::kArrays;
}

void WalkTopLevelKeys(const RegistryKey& parameters, bool isEverythingGone) {
  for (const DsmKeyEntry& entry : gDsmParameterKeys.Entries()) {
    const std::string name = NarrowText(entry.name);
    if (entry.type == kArraySerialKey) {
      UtilpRemoveArraySettings(parameters, entry.name, isEverythingGone);
    } else if (entry.type == kPathKey) {
      TracePrint("Path subkey found %s.\n", name.c_str());
    } else {
      TracePrint("VIDPID subkey found %s type %u length %u.\n", name.c_str(), static_cast<unsigned>(entry.type),
                 static_cast<unsigned>(std::wcslen(entry.name)));
    }
  }
}

/// Deletes the path keys and VID/PID keys at the top that belong to no device present.
void RemoveInactiveTopLevelKeys(const RegistryKey& parameters) {
  for (const DsmKeyEntry& entry : gDsmParameterKeys.Entries()) {
    if ((entry.type == kPathKey || entry.type == kVidPidKey) && entry.isActive == 0) {
      UtilpDeleteSubKey(parameters, L"Parameters", entry.name, kTopLevelIndent);
      ++gRemovedKeyCount;
    }
  }
}

/// Examines the listed keys; false when the user declined.
bool ExamineKeys(const RegistryKey& parameters, bool isChannelOpen) {
  bool isEverythingGone = !isChannelOpen;
  if (isChannelOpen) {
    switch (AskForArrays()) {
    case Reported::kNoArrays:
      Print("No Array Module's seen by this Host.\n\n");
      isEverythingGone = true;
      break;
    case Reported::kNothing:
      if (!UtilpConfirmRemoval()) {
        return false;
      }
      isEverythingGone = true;
      break;
    case Reported::kArrays:
      break;
    }
  }
  WalkTopLevelKeys(parameters, isEverythingGone);
  RemoveInactiveTopLevelKeys(parameters);
  return true;
}

void PrintOutcome() {
  if (gRemovedKeyCount > 0) {
    Print("\nPersistent Device Specific settings for %u inactive devices were removed.\n",
          static_cast<unsigned>(gRemovedKeyCount));
  } else {
    Print("\nAll persistent Device Specific settings are for active devices. No settings were removed.\n");
  }
}

} // namespace

int UtilpRemoveDeviceSpecificSettings() {
  const bool isChannelOpen = utilDetermineBusFd();
  if (!isChannelOpen && !UtilpConfirmRemoval()) {
    return 1;
  }
  gRemovedKeyCount = 0;
  RegistryKey parameters;
  if (!RegpOpenDSMParametersKey(parameters)) {
    Print("\nThere are no persistent Device Specific settings to remove.\n");
    return 0;
  }
  if (!parameters.IsOpen()) {
    TracePrint("\nNULL Device Specific settings Parameters Key.\n");
    return 0;
  }
  if (RegpEnumDSM2Key(parameters, gDsmParameterKeys) == 0) {
    TracePrint("\nAttempt to enumerate persistent Device Specific Settings failed.");
    return 0;
  }
  if (gDsmParameterKeys.Entries().empty()) {
    Print("\nNo Device Specific settings SubKeys to remove.\n");
    return 1;
  }
  if (ExamineKeys(parameters, isChannelOpen)) {
    PrintOutcome();
  }
  gDsmParameterKeys.Release();
  return 1;
}

} // namespace korvex
