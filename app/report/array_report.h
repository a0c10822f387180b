#pragma once

namespace korvex {

/// The detail report of the one array that the collection has read, on standard output: its identity, its controllers
/// with their paths and its LUNs with theirs; gExtendedReport adds diagnostics. Reads the collection's stores. Always
/// true.
bool PrintArrayInformation();

} // namespace korvex
