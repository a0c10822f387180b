#pragma once

namespace korvex {

/// One run: the options of the command line (`words`, the program's name first, changed in place by some options) in
/// their order. Gives the run's status.
int RunKorvex(int wordCount, char** words);

/// The same for the process's own command line: with standard output set up, and -1 after a message when an exception
/// ends `run`.
int RunGuarded(int (*run)(int wordCount, char** words), int wordCount, char** words) noexcept;

} // namespace korvex
