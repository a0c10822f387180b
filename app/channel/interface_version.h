#pragma once

namespace korvex {

/// Asks the DSM for its interface version over a connection of its own: gMofFileVersion is set, to generation 1 when
/// the version class cannot be had. False when the DSM could not be asked or its answer not be read; the messages for
/// the former have been printed.
bool ReadInterfaceVersion();

} // namespace korvex
