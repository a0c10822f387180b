#pragma once

#include "app/records/status_info.h"

namespace korvex {

/// One array's status on standard output: its controllers' states and its name, then a line for each pair of paths;
/// nothing for a record without status.
void utilPrintArrayStatus(const UtilStatusInfo& record);

} // namespace korvex
