#pragma once

namespace korvex {

/// Carries out -M: one line on standard output for every physical disk that the MPIO framework presents as a multipath
/// disk. Always 0.
int ShowMpioMappings();

} // namespace korvex
