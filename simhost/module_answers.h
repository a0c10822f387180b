#pragma once

#include "simhost/module_model.h"
#include "simhost/repository.h"

#include <cstdint>
#include <span>
#include <vector>

// What a DSM of interface generation 1 answers about an array module.

namespace simhost {

/// Adds the classes of the answers; those that are there already stay.
void AddModuleClasses(Repository& repository);
/// Appends the methods that give them.
void AppendModuleMethods(std::vector<MethodDefinition>& methods);

CimObject ModuleAnswer(const Repository& repository, const ModuleModel& module);
CimObject ControllerAnswer(const Repository& repository, const ModuleModel& module);
/// `owners` are the designations of the controllers that own the LUNs now, as many as there are LUNs.
CimObject DiskAnswer(const Repository& repository, const ModuleModel& module, std::span<const std::uint32_t> owners);

} // namespace simhost
