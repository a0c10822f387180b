#pragma once

#include <string>

/// The description of a large valid host with `arrays` arrays of two controllers, `luns` LUNs and `paths` paths a
/// controller each, of interface generation 1 or 2.
std::string MadeHost(int arrays, int luns, int paths, int generation = 2);
