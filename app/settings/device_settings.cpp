#include "app/settings/device_settings.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/options/dsm_parameters.h"
#include "platform/allocation.h"
#include "wmi/trace_text.h"

#include <cwchar>
#include <iterator>

namespace korvex {

namespace {

struct KindOfKey {
  const wchar_t* prefix;
  std::uint32_t type;
};

constexpr KindOfKey kKinds[] = {{L"Lun#", kLunKey}, {L"Array#", kArrayKey}};

/// The kind of a key, or 0.
std::uint32_t TypeOf(const KeyName& name) {
  for (const KindOfKey& kind : kKinds) {
    if (std::wcsncmp(name, kind.prefix, std::wcslen(kind.prefix)) == 0) {
      return kind.type;
    }
  }
  return 0;
}

void ReportFailedRead(DWORD result, std::uint32_t expected, std::uint32_t found) {
  if (result == ERROR_NO_MORE_ITEMS) {
    PrintError("DeviceSettings subKey enumeration exhausted.\n");
    TracePrint("enumDeviceSettingsKeys: DeviceSettings subKey enumeration exhausted. subKeys expected/found %d/%d\n",
               static_cast<int>(expected), static_cast<int>(found));
  } else {
    PrintError("DeviceSettings subKey enumeration failure.  error - %s\n", LastErrorText().c_str());
  }
}

/// False after a message.
bool ReadEntry(const RegistryKey& deviceSettings, std::uint32_t index, std::uint32_t count,
               DeviceSettingsEntry& entry) {
  const DWORD result = deviceSettings.SubkeyName(index, entry.name);
  if (result != ERROR_SUCCESS) {
    ReportFailedRead(result, count, index);
    return false;
  }
  const std::string name = NarrowText(entry.name);
  BoundedCopy(entry.narrowName, sizeof entry.narrowName, name.c_str());
  entry.type = TypeOf(entry.name);
  if (entry.type == 0) {
    PrintError("DeviceSettings subKey type '%s' - unknown.\n", name.c_str());
    TracePrint("DeviceSettings subKey type '%s' - unknown.\n", name.c_str());
    return false;
  }
  TracePrint("enumDeviceSettingsKeys: subKey[%d] '%s'\n", static_cast<int>(index), name.c_str());
  return true;
}

} // namespace

bool DeviceSettingsList::Allocate(std::uint32_t count) {
  Release();
  m_entries = static_cast<DeviceSettingsEntry*>(
      platform::AllocateStore("DeviceSettings data", std::uint64_t{count} * sizeof(DeviceSettingsEntry)));
  m_count = m_entries == nullptr ? 0 : count;
  return m_entries != nullptr;
}

void DeviceSettingsList::Release() {
  platform::FreeStore(m_entries);
  m_entries = nullptr;
  m_count = 0;
}

int regOpenDeviceSettingsKey(RegistryKey& key) {
  wchar_t path[kSettingsPathRoom];
  BoundedWideFormat(path, sizeof path, "SYSTEM\\CurrentControlSet\\Services\\%s\\Parameters\\DeviceSettings",
                    gRequestedDsm);
  TracePrint("regOpenDeviceSettingsKey: DeviceSettings key path: '%s'\n", NarrowText(path).c_str());
  const DWORD result = key.OpenMachineKey(path);
  if (result != ERROR_SUCCESS) {
    const std::string errorText = LastErrorText();
    TracePrint("regOpenDeviceSettingsKey: Could not open DeviceSettings Key. error - %d %s\n", static_cast<int>(result),
               errorText.c_str());
    PrintError("Could not open DeviceSettings Key.  error - %s\n", errorText.c_str());
    return 0;
  }
  return 1;
}

int regOpenArraySettingsKey(const wchar_t* subkeyName, RegistryKey& key) {
  RegistryKey deviceSettings;
  if (regOpenDeviceSettingsKey(deviceSettings) == 0) {
    return 0;
  }
  const DWORD result = key.OpenSubkey(deviceSettings, subkeyName);
  if (result != ERROR_SUCCESS) {
    const std::string errorText = LastErrorText();
    TracePrint("regOpenArraySettingsKey: Could not open Array Settings Key. error - %s\n", errorText.c_str());
    PrintError("Could not open Array Settings Key.  error - %u %s\n", static_cast<unsigned>(result), errorText.c_str());
    return 0;
  }
  return 1;
}

int enumDeviceSettingsKeys(const RegistryKey& deviceSettings, DeviceSettingsList& list) {
  list.Release();
  std::uint32_t count = 0;
  std::uint32_t longestName = 0;
  if (deviceSettings.CountSubkeys(count, longestName) != ERROR_SUCCESS) {
    const std::string errorText = LastErrorText();
    TracePrint("enumDeviceSettingsKeys: DeviceSettings subKey query failed. error - %s\n", errorText.c_str());
    PrintError("DeviceSettings subKey query failed.  error - %s\n", errorText.c_str());
    return 0;
  }
  if (count == 0) {
    return 1;
  }
  TracePrint("enumDeviceSettingsKeys: Number of DeviceSettings subKeys %d. Max subKey name length %d.\n",
             static_cast<int>(count), static_cast<int>(longestName));
  if (!list.Allocate(count)) {
    PrintError("DeviceSettings data memory allocation failure.\n");
    return 0;
  }
  for (std::uint32_t index = 0; index < count; ++index) {
    if (!ReadEntry(deviceSettings, index, count, list.Entries()[index])) {
      list.Release();
      return 0;
    }
  }
  return 1;
}

} // namespace korvex
