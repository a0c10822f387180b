#pragma once

#include "simhost/driver_options.h"
#include "simhost/module_model.h"

#include <cstdint>
#include <span>

// What has become of described array modules.

namespace simhost {

/// The module as it is now: `owners` are the designations of the controllers that own the LUNs, as many as there are
/// LUNs; the rest follows from the options that were set.
ModuleModel CurrentModule(const ModuleModel& module, std::span<const std::uint32_t> owners,
                          const DriverOptions& options);

/// Whether a path of the module has this identifier, and whether the module can change now.
PathCondition ConditionOf(const ModuleModel& module, std::uint32_t pathId);

} // namespace simhost
