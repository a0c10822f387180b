#pragma once

#include "app/options/registry_key.h"

#include <cstdint>
#include <span>

// The registry key DeviceSettings below the DSM's Parameters: one key per array and one per LUN, named after the
// device's WWN.

namespace korvex {

/// Kinds of keys below DeviceSettings.
inline constexpr std::uint32_t kArrayKey = 1; ///< "Array#" and the WWN as 32 lower-case hexadecimal digits
inline constexpr std::uint32_t kLunKey = 2;   ///< "Lun#" and the WWN likewise

/// One key below DeviceSettings.
struct DeviceSettingsEntry {
  std::uint8_t isMatched; ///< 0 or 1: a device that the DSM reports
  std::uint32_t type;     ///< kArrayKey or kLunKey
  KeyName name;
  char narrowName[kKeyNameLength + 1]; ///< `name` in the ANSI code page
};

/// The keys below DeviceSettings in the registry's order.
class DeviceSettingsList {
public:
  DeviceSettingsList() = default;
  ~DeviceSettingsList() { Release(); }
  DeviceSettingsList(const DeviceSettingsList&) = delete;
  DeviceSettingsList& operator=(const DeviceSettingsList&) = delete;

  /// Makes room for `count` cleared entries in place of what there was; false when there is no memory.
  bool Allocate(std::uint32_t count);
  void Release();
  std::span<DeviceSettingsEntry> Entries() const { return {m_entries, m_count}; }

private:
  DeviceSettingsEntry* m_entries = nullptr;
  std::uint32_t m_count = 0;
};

/// Opens DeviceSettings of the DSM at hand; 1, or 0 after a message.
int regOpenDeviceSettingsKey(RegistryKey& key);

/// Opens one key below DeviceSettings; 1, or 0 after a message.
int regOpenArraySettingsKey(const wchar_t* subkeyName, RegistryKey& key);

/// Lists the keys below DeviceSettings; 1 (no entries for a key without subkeys), or 0 after a message.
int enumDeviceSettingsKeys(const RegistryKey& deviceSettings, DeviceSettingsList& list);

} // namespace korvex
