#pragma once

#include "simhost/description.h"
#include "simhost/module_model.h"

#include <cstddef>

namespace simhost {

/// An array of a DSM of interface generation 1 as an administrator describes it; `place` is its place in the DSM's
/// list, from which its defaults follow. What is not described is what a healthy array has. Throws DescriptionError.
ModuleModel ReadModule(const Node& array, std::size_t place);

} // namespace simhost
