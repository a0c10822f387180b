#pragma once

#include "app/options/option_records.h"

namespace korvex {

/// The DSM's options as it answered them, on standard output: the variables with their values, then the actions.
void PrintFeatureOptions(const OptionRequestRecord& record);

} // namespace korvex
