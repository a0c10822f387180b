#include "app/settings/policy_saving.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/options/dsm_parameters.h"
#include "app/settings/device_settings.h"

namespace korvex {

int regSetArrayLBP(const wchar_t* arraySubkeyName, std::uint32_t policy) {
  RegistryKey arrayKey;
  if (regOpenArraySettingsKey(arraySubkeyName, arrayKey) == 0) {
    PrintError("\nAttempt to set persistent Array Load Balance Policy failed.");
    return 0;
  }
  if (!arrayKey.IsOpen()) {
    PrintError("\nAttempt to set persistent Array Load Balance Policy failed with NULL arrayKey.");
    return 0;
  }
  const DWORD result = arrayKey.SetNumber(L"LoadBalancePolicy", policy);
  if (result != ERROR_SUCCESS) {
    const std::string errorText = LastErrorText();
    TracePrint("regSetArrayLBP: Failure setting Array LBP value. error - %d %s\n", static_cast<int>(result),
               errorText.c_str());
    PrintError("Failure setting Array LBP value.  error - %s\n", errorText.c_str());
    return 0;
  }
  return 1;
}

bool regSaveLBPSettings(const OptionDetailRecord& detail) {
  DeviceSettingsList keys;
  {
    RegistryKey deviceSettings;
    if (regOpenDeviceSettingsKey(deviceSettings) == 0) {
      return false;
    }
    if (enumDeviceSettingsKeys(deviceSettings, keys) == 0) {
      PrintError("\nAttempt to set persistent Array Load Balance Policy failed.");
      return false;
    }
  }
  for (const DeviceSettingsEntry& key : keys.Entries()) {
    if (key.type == kArrayKey) {
      regSetArrayLBP(key.name, detail.Value);
    }
  }
  return RegpSetParametersValue("LoadBalancePolicy", detail.Value);
}

} // namespace korvex
