#pragma once

#include "simhost/description.h"

// Names of codes that the descriptions of arrays have in both interface generations.

namespace simhost {

inline constexpr CodeName kDesignations[] = {{"A", 0}, {"B", 1}};
inline constexpr CodeName kInterfaces[] = {{"FC", 0}, {"IB", 4}, {"iSCSI", 5}, {"SAS", 6}, {"unused", 255}};
inline constexpr CodeName kControllerStates[] = {{"active", 1}, {"reset", 4}};

} // namespace simhost
