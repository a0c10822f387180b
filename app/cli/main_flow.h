#pragma once

namespace korvex {

/// One run: the options of the command line (`words`, the program's name first, changed in place by some options) in
/// their order. Gives the run's status.
int RunKorvex(int wordCount, char** words);

/// The status that `run` gives, or -1 after a message when an exception ends it. What was printed has left the process
/// then.
int RunGuarded(int (*run)(int wordCount, char** words), int wordCount, char** words) noexcept;

} // namespace korvex
