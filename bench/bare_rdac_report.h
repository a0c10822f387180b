#pragma once

#include "app/inventory/rdac_info.h"

/// Takes all values of an array module's report from its record and makes them ready: codes as texts, flags as letters.
void ReadyRdacReport(const korvex::RdacInfoRequest& request);

/// Writes the report's bytes from the ready values, with one call of the runtime library a line.
void PrintBareRdacReport();
