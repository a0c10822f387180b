#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/gen2_stores.h"
#include "app/settings/settings_removal.h"
#include "app/settings/top_level_keys.h"
#include "wmi/trace_text.h"

#include <algorithm>

namespace korvex {

namespace {

enum class Array { kPresent, kGone, kUnknown };

/// Reads the array that a key names from the DSM.
Array ReadArray(const wchar_t* arrayName) {
  const std::string wwn = NarrowText(TextOfKey(arrayName));
  std::ranges::fill(gSelectionWwn, '\0');
  std::copy_n(wwn.begin(), std::min(wwn.size(), sizeof gSelectionWwn), gSelectionWwn);
  gSelectionMode = kByWwn;
  gNumberOfArrays = 1;
  gDetailMode = true;
  gReportSelectionErrors = false;
  switch (GetDsmArrayInfo()) {
  case -1:
    return Array::kGone;
  case 1:
    // Without memory for its records nothing is known of the array's parts.
    return gTpgInfoBuffer == nullptr ? Array::kUnknown : Array::kPresent;
  default:
    return Array::kUnknown;
  }
}

void WalkSubkeys(const RegistryKey& arrayKey, const wchar_t* arrayName, const DsmKeyList& subkeys, bool isGone) {
  for (const DsmKeyEntry& entry : subkeys.Entries()) {
    if (entry.type == kLunSerialKey) {
      UtilpRemoveMpdSettings(arrayName, arrayKey, entry.name, isGone);
    } else if (entry.type == kControllerKey) {
      UtilpRemoveTpgSettings(arrayName, arrayKey, entry.name, isGone);
    } else {
      TracePrint("UtilpRemoveArraySettings: Unknown subkey found %s.\n", NarrowText(entry.name).c_str());
    }
  }
}

} // namespace

int UtilpRemoveArraySettings(const RegistryKey& parameters, const wchar_t* arrayName, bool isGone) {
  RegistryKey arrayKey;
  if (!RegpOpenDSM2SubKey(parameters, arrayName, arrayKey)) {
    TracePrint("\nFailed to open Array SubKey %s.\n", NarrowText(arrayName).c_str());
    return 0;
  }
  if (!arrayKey.IsOpen()) {
    TracePrint("\nNULL Device Specific settings Array Key.\n");
    return 0;
  }
  DsmKeyList subkeys;
  if (RegpEnumDSM2Key(arrayKey, subkeys) == 0) {
    TracePrint("\nAttempt to enumerate Array subkeys failed.");
    return 0;
  }
  if (!isGone) {
    switch (ReadArray(arrayName)) {
    case Array::kGone:
      isGone = true;
      break;
    case Array::kPresent:
      MarkPathKeysOfArray();
      break;
    case Array::kUnknown:
      KeepTopLevelKeys();
      return 0;
    }
  }
  WalkSubkeys(arrayKey, arrayName, subkeys, isGone);
  if (isGone) {
    UtilpDeleteSubKey(parameters, L"Parameters", arrayName, kTopLevelIndent);
    ++gRemovedKeyCount;
  }
  return 1;
}

} // namespace korvex
