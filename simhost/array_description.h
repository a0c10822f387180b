#pragma once

#include "simhost/array_model.h"
#include "simhost/description.h"

#include <cstddef>

namespace simhost {

/// An array as an administrator describes it; `index` is its place in the DSM's list, from which its defaults follow.
/// What is not described is what a healthy array has. Throws DescriptionError.
ArrayModel ReadArray(const Node& array, std::size_t index);

} // namespace simhost
