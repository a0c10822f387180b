#pragma once

#include "app/options/option_records.h"

#include <cstdint>

namespace korvex {

/// Stores a load-balance policy in one array's key below DeviceSettings; 1, or 0 after a message.
int regSetArrayLBP(const wchar_t* arraySubkeyName, std::uint32_t policy);

/// Completion handler: stores the option's Value as "LoadBalancePolicy" in every array's key and in Parameters; whether
/// the last of these succeeded.
bool regSaveLBPSettings(const OptionDetailRecord& detail);

} // namespace korvex
