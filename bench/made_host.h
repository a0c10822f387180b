#pragma once

#include <string>

/// The description of a large valid host with `arrays` arrays of two controllers, `luns` LUNs and `paths` paths a
/// controller each.
std::string MadeHost(int arrays, int luns, int paths);
