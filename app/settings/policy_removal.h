#pragma once

#include "app/inventory/rdac_info.h"
#include "app/settings/device_settings.h"

#include <cstdint>
#include <span>

namespace korvex {

/// Marks the first unmatched entry that names the record's array (`kind` kArrayKey) or its LUN with that index
/// (kLunKey); 1 when one was marked, else 0.
int regMatchDeviceSettingsKey(std::span<DeviceSettingsEntry> entries, const RdacInfo& info, std::uint32_t kind,
                              std::uint32_t lunIndex);

/// Removes a LUN's key with the path keys below it; the number of keys removed.
std::uint32_t regRemoveLunSettingsKey(const RegistryKey& deviceSettings, const wchar_t* lunSubkeyName);

/// Carries out -R in interface generation 1: removes the keys of arrays and LUNs that the DSM does not report. 1 when
/// the keys were examined, else 0.
int regRemoveInactiveLBPSettings();

} // namespace korvex
