#pragma once

namespace korvex {

/// The LUNs of the collected array with their paths and, in the extended report, their diagnostics; nothing for an
/// array without LUNs.
void PrintLunInformation();

} // namespace korvex
