#pragma once

namespace korvex {

/// What getopt gives for a letter that it does not know or that lacks its argument, and at the end of the options.
inline constexpr int kOptionError = '?';
inline constexpr int kEndOfOptions = -1;

/// The next option letter of `words`, kOptionError after a message on standard error, or kEndOfOptions. A letter that
/// is followed by ':' in `optionLetters` takes an argument, which gOptionArgument refers to then. Goes on from
/// gOptionIndex and gScanPosition; `words` needs no terminating entry.
int getopt(int wordCount, char** words, const char* optionLetters);

} // namespace korvex
