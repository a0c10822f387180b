#pragma once

#include "simhost/module_model.h"
#include "simhost/repository.h"

#include <cstdint>

namespace simhost {

/// Adds the class of the status answer; what is there already stays.
void AddModuleStatusClass(Repository& repository);

/// The limits that a status image is made for.
struct StatusLimits {
  std::uint32_t maxLuns = 0;
  std::uint32_t maxPaths = 0;
};

/// What a DSM of interface generation 1 answers about a module's present status: an image of its controllers' states
/// and of each LUN's paths. What the limits have no room for is left out; limits too large for an image give an empty
/// one.
CimObject AnswerStatus(const Repository& repository, const ModuleModel& module, const StatusLimits& limits);

} // namespace simhost
