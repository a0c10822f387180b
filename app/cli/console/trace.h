#pragma once

namespace korvex {

/// The trace switch: cleared when the run starts, set by -t.
extern bool gTraceEnabled;

/// One trace line on standard error, cut to 254 bytes; nothing while the switch is clear. The format carries its own
/// line end.
void TracePrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace korvex
