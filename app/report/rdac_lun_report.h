#pragma once

#include "app/inventory/rdac_info.h"

namespace korvex {

/// The LUNs of a generation-1 module, each with how it is reached through either controller; LUNs without a WWN are
/// left out.
void PrintRdacLuns(const RdacInfo& info);

} // namespace korvex
