#pragma once

namespace korvex {

/// Asks on the console whether all device-specific settings may be removed although the DSM reports no arrays, until
/// a line says y or n; true for yes. The end of the input is a no.
bool UtilpConfirmRemoval();

} // namespace korvex
