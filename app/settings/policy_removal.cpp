#include "app/settings/policy_removal.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/limits.h"
#include "app/inventory/wwn_text.h"
#include "app/settings/removal_confirmation.h"
#include "wmi/trace_text.h"

#include <cstring>

namespace korvex {

namespace {

/// A LUN whose WWN begins with a zero byte counts as absent.
bool IsPresent(const RdacLun& lun) {
  return lun.WWN[0] != 0;
}

/// What stands behind the prefix of the entry's name.
const char* WwnOf(const DeviceSettingsEntry& entry) {
  return std::strchr(entry.narrowName, '#') + 1;
}

/// Marks the entries of the devices that the DSM reports. An array that cannot be read marks none.
void MarkReportedDevices(std::span<DeviceSettingsEntry> entries) {
  for (std::uint32_t id = 0; id < MaxArrayModules; ++id) {
    RdacInfoRequest request;
    if (GetRdacInfoForTarget(id, request) != 1) {
      continue;
    }
    regMatchDeviceSettingsKey(entries, request.info, kArrayKey, 0);
    for (std::uint32_t lun = 0; lun < request.info.MaxLuns(); ++lun) {
      if (IsPresent(*request.info.Lun(lun))) {
        regMatchDeviceSettingsKey(entries, request.info, kLunKey, lun);
      }
    }
  }
}

void RemoveArrayKey(const RegistryKey& deviceSettings, const DeviceSettingsEntry& entry) {
  Print(" Registry Key 'DeviceSettings\\%s'             will be removed.\n", entry.narrowName);
  if (deviceSettings.DeleteSubkey(entry.name) != ERROR_SUCCESS) {
    PrintError("Error removing Array DeviceSettings Key.  '%s' - %s\n", entry.narrowName, LastErrorText().c_str());
  }
}

/// The number of keys removed; an array key counts also when it could not be removed.
std::uint32_t RemoveUnmatched(const RegistryKey& deviceSettings, std::span<const DeviceSettingsEntry> entries) {
  std::uint32_t count = 0;
  for (const DeviceSettingsEntry& entry : entries) {
    if (entry.isMatched != 0) {
      continue;
    }
    if (entry.type == kArrayKey) {
      RemoveArrayKey(deviceSettings, entry);
      ++count;
    } else {
      count += regRemoveLunSettingsKey(deviceSettings, entry.name);
    }
  }
  return count;
}

/// Removes a LUN's path keys from the last one on; the number removed.
std::uint32_t RemovePathKeys(const RegistryKey& lunKey, const char* lunName, std::uint32_t pathCount) {
  std::uint32_t removed = 0;
  for (std::uint32_t index = pathCount; index-- > 0;) {
    KeyName name;
    DWORD result = lunKey.SubkeyName(index, name);
    if (result != ERROR_SUCCESS) {
      if (result != ERROR_NO_MORE_ITEMS) {
        PrintError("Error enumerating Lun DeviceSettings Key. '%s' - %s\n", lunName, LastErrorText().c_str());
      }
      break;
    }
    const std::string pathName = NarrowText(name);
    Print(" Registry Key 'DeviceSettings\\%s\\%s' will be removed.\n", lunName, pathName.c_str());
    result = lunKey.DeleteSubkey(name);
    if (result == ERROR_SUCCESS) {
      ++removed;
    } else {
      PrintError("Error removing Path DeviceSettings Key.  '%s' - %s error - %d\n", pathName.c_str(),
                 LastErrorText().c_str(), static_cast<int>(result));
    }
  }
  return removed;
}

/// Without a channel nothing is known to be gone, so nothing is removed whatever the answer is.
int AskWithoutChannel() {
  return UtilpConfirmRemoval() ? 0 : 1;
}

/// Examines the keys; 1, or 0 after a message.
int RemoveSettings(const RegistryKey& deviceSettings) {
  DeviceSettingsList keys;
  if (enumDeviceSettingsKeys(deviceSettings, keys) == 0) {
    Print("\nAttempt to remove persistent Load Balance Policy settings failed.");
    return 0;
  }
  if (keys.Entries().empty()) {
    Print("\nNo Device Settings Keys to remove.\n");
    return 1;
  }
  MarkReportedDevices(keys.Entries());
  const std::uint32_t count = RemoveUnmatched(deviceSettings, keys.Entries());
  if (count > 0) {
    Print("\nPersistent LBP settings for %u inactive devices were removed.\n", static_cast<unsigned>(count));
  } else {
    Print("\nAll persistent LBP settings are for active devices. No settings were removed.\n");
  }
  return 1;
}

} // namespace

int regMatchDeviceSettingsKey(std::span<DeviceSettingsEntry> entries, const RdacInfo& info, std::uint32_t kind,
                              std::uint32_t lunIndex) {
  const RdacLun* lun = kind == kLunKey ? info.Lun(lunIndex) : nullptr;
  if (kind == kLunKey && lun == nullptr) {
    return 0;
  }
  const WwnText wwn(lun != nullptr ? lun->WWN : info.Module().WWN);
  for (DeviceSettingsEntry& entry : entries) {
    if (entry.isMatched == 0 && entry.type == kind && std::strcmp(WwnOf(entry), wwn.c_str()) == 0) {
      entry.isMatched = 1;
      return 1;
    }
  }
  return 0;
}

std::uint32_t regRemoveLunSettingsKey(const RegistryKey& deviceSettings, const wchar_t* lunSubkeyName) {
  const std::string lunName = NarrowText(lunSubkeyName);
  RegistryKey lunKey;
  if (lunKey.OpenSubkey(deviceSettings, lunSubkeyName) != ERROR_SUCCESS) {
    PrintError("Error opening Lun DeviceSettings key.  '%s' - %s\n", lunName.c_str(), LastErrorText().c_str());
    return 0;
  }
  std::uint32_t pathCount = 0;
  std::uint32_t longestName = 0;
  if (lunKey.CountSubkeys(pathCount, longestName) != ERROR_SUCCESS) {
    PrintError("Lun Device Settings subKey query failed.  error - %s\n", LastErrorText().c_str());
    Print("\nAttempt to remove persistent Load Balance Policy settings failed.");
    return 0;
  }
  std::uint32_t removed = RemovePathKeys(lunKey, lunName.c_str(), pathCount);
  Print(" Registry Key 'DeviceSettings\\%s'               will be removed.\n", lunName.c_str());
  const DWORD result = deviceSettings.DeleteSubkey(lunSubkeyName);
  if (result == ERROR_SUCCESS) {
    ++removed;
  } else {
    PrintError("Error removing Lun DeviceSettings Key.  '%s' - %s error - %d\n", lunName.c_str(),
               LastErrorText().c_str(), static_cast<int>(result));
  }
  return removed;
}

int regRemoveInactiveLBPSettings() {
  switch (InitModuleArrays()) {
  case 0:
    Print("\nAttempt to remove persistent Load Balance Policy settings failed. Failure in initialization of Module "
          "Array.");
    return 0;
  case -1:
    return AskWithoutChannel();
  default:
    break;
  }
  RegistryKey deviceSettings;
  if (regOpenDeviceSettingsKey(deviceSettings) == 0) {
    Print("\nThere are no persistent Load Balance Policy settings to remove.\n");
    return 0;
  }
  if (!deviceSettings.IsOpen()) {
    Print("\nNULL hKey for Load Balance Policy settings.\n");
    return 0;
  }
  return RemoveSettings(deviceSettings);
}

} // namespace korvex
