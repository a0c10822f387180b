#pragma once

#include "app/inventory/rdac_info.h"

namespace korvex {

/// The detail report of one array module in interface generation 1, on standard output; the request's record must
/// exist.
void PrintRdacInfo(const RdacInfoRequest& request);

} // namespace korvex
