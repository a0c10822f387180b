#pragma once

namespace korvex {

/// The usage line on standard output.
void PrintUsage();

} // namespace korvex
