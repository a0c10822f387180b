#pragma once

#include "simhost/module_record.h"

#include <span>

// The numbers of each kind of object that a DSM of interface generation 1 tells, in the order of their class, and the
// keys of both generations that describe the object.

namespace simhost {

std::span<const ModuleProperty> ModuleProperties();
/// What the controllers take over from their array unless they tell it themselves.
std::span<const ModuleProperty> ModuleUtmLunProperties();
std::span<const ModuleProperty> ModuleControllerProperties();
std::span<const ModuleProperty> ModulePathProperties();
std::span<const ModuleProperty> ModuleAddressProperties();
std::span<const ModuleProperty> ModuleLunProperties();
std::span<const ModuleProperty> ModuleDriveInfoProperties();
std::span<const ModuleProperty> ModuleDriveProperties();

} // namespace simhost
