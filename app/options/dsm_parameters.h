#pragma once

#include "app/options/option_records.h"
#include "app/options/registry_key.h"

#include <cstdint>

// The DSM's persistent values, in the registry key Parameters below its service key.

namespace korvex {

/// Characters of a settings key's path that are kept, with the terminator.
inline constexpr std::uint32_t kSettingsPathRoom = 70;

/// Opens the key Parameters of the DSM at hand; false after a message.
bool RegpOpenDSMParametersKey(RegistryKey& key);

/// Stores a 32-bit value (REG_DWORD) under `name`, of which at most 50 characters are taken; false after a message.
bool RegpSetParametersValue(const char* name, std::uint32_t value);

/// Completion handler: stores the option's Value under its Keyword.
bool SaveOptionValue(const OptionDetailRecord& detail);

} // namespace korvex
