#pragma once

namespace korvex {

/// Carries out -P with gOptionArgument: shows or changes the timing counters that the MPIO framework keeps for the DSM.
/// 1, 0 on failure, -1 when the DSM's channel could not be opened.
int UtilpProcessMpioParameters();

} // namespace korvex
