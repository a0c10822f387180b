#pragma once

#include "app/inventory/rdac_info.h"

#include <cstdint>

namespace korvex {

/// One controller (0 = A, 1 = B) of a generation-1 module with its paths; nothing for one that the DSM did not report.
void PrintRdacController(const RdacInfo& info, std::uint32_t index);

} // namespace korvex
