#pragma once

#include <cstddef>
#include <cstdint>

namespace korvex {

/// The words of the command line, the program's name first.
struct CommandLine {
  int wordCount;
  char** words;

  /// The word at `index`, or none behind the last.
  char* WordAt(std::int32_t index) const { return index < wordCount ? words[index] : nullptr; }
};

/// The letters that the scanner knows, into `buffer` of `capacity` bytes.
void FormatOptionLetters(char* buffer, std::size_t capacity);

/// Acts on one option that the scanner gave, with the word that it picks up in gOptionArgument; gives the run's new
/// status. `status` is the one so far, which some options leave as it is.
std::int32_t ActOnOption(int letter, const CommandLine& commandLine, std::int32_t status);

} // namespace korvex
