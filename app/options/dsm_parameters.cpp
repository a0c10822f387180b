#include "app/options/dsm_parameters.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "wmi/trace_text.h"

namespace korvex {

bool RegpOpenDSMParametersKey(RegistryKey& key) {
  wchar_t path[kSettingsPathRoom];
  BoundedWideFormat(path, sizeof path, "SYSTEM\\CurrentControlSet\\Services\\%s\\Parameters", gRequestedDsm);
  TracePrint("RegpOpenDSMParametersKey: Parameters Key path: '%s'\n", NarrowText(path).c_str());
  const DWORD result = key.OpenMachineKey(path);
  if (result != ERROR_SUCCESS) {
    const std::string errorText = LastErrorText();
    TracePrint("RegpOpenDSMParametersKey: Could not open Parameters Key. error - %d %s\n", static_cast<int>(result),
               errorText.c_str());
    PrintError("Could not open Parameters Key.  error - %s\n", errorText.c_str());
    return false;
  }
  return true;
}

bool RegpSetParametersValue(const char* name, std::uint32_t value) {
  KeyName valueName;
  BoundedWideFormat(valueName, sizeof valueName, "%s", name);
  RegistryKey parameters;
  if (!RegpOpenDSMParametersKey(parameters)) {
    PrintError("\nAttempt to set persistent %s value failed.", name);
    return false;
  }
  if (!parameters.IsOpen()) {
    PrintError("\nAttempt to set persistent %s value failed. parametersKey is NULL.", name);
    return false;
  }
  const DWORD result = parameters.SetNumber(valueName, value);
  if (result != ERROR_SUCCESS) {
    const std::string errorText = LastErrorText();
    TracePrint("RegpSetParametersValue: Failure setting persistent %s value. error - %d %s\n", name,
               static_cast<int>(result), errorText.c_str());
    PrintError("Failure setting persistent %s value.  error - %s\n", name, errorText.c_str());
    return false;
  }
  return true;
}

bool SaveOptionValue(const OptionDetailRecord& detail) {
  return RegpSetParametersValue(detail.Keyword, detail.Value);
}

} // namespace korvex
