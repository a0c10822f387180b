#pragma once

#include <cstdint>

// The run's state that several rooms read and write.

namespace korvex {

/// The first command-line word, as typed; none when there is none.
extern const char* gProgramName;
/// Index of the next command-line word to scan; 1 at start.
extern std::int32_t gOptionIndex;
/// Argument of the option at hand, or none.
extern char* gOptionArgument;
/// Position of the option scanner inside the current word; at an empty text at start.
extern char* gScanPosition;
/// The option character read last.
extern char gOptionChar;

/// The DSM name given right after a first-position -D, at most 10 characters, and whether it was given.
struct CommandLineDsm {
  bool isSet;
  char name[11];
};
extern CommandLineDsm gCommandLineDsm;

/// How arrays are selected in interface generation 2.
enum SelectionMode : std::uint8_t { kAllArrays = 0, kByArrayId = 1, kByWwn = 2 };

/// 0 all arrays, 1 by id, 2 by WWN.
extern std::uint8_t gSelectionMode;
/// Selected id, then the id of the array record read last; 255 at start.
extern std::uint8_t gSelectedArrayId;
/// The selected WWN: 32 characters, not terminated.
extern char gSelectionWwn[32];
/// What the DSM answered to the number of arrays; the upper bound of the array list walk. 0 at start.
extern std::uint32_t gNumberOfArrays;
/// A single array's report is wanted.
extern bool gDetailMode;
/// The extended report is wanted.
extern bool gExtendedReport;
/// Listing and selection messages are wanted; set at start.
extern bool gReportSelectionErrors;
/// A status scan is under way: the collection uses its WithStatus requests.
extern bool gStatusScanActive;

/// Puts all of the above to its value at the start of a run (the trace switch too).
void ResetRunState();

} // namespace korvex
