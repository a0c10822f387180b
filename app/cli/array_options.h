#pragma once

#include "app/cli/option_table.h"

#include <cstdint>

namespace korvex {

/// The option -a: the arrays' listing, or the report of the one that gOptionArgument names.
std::int32_t ReportArrays(const CommandLine& commandLine, std::int32_t status);

/// The option -g: the report of the array whose id gOptionArgument gives.
std::int32_t ReportArrayById(const CommandLine& commandLine, std::int32_t status);

} // namespace korvex
