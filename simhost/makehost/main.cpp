#include "simhost/makehost/made_machine.h"

#include <charconv>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

// Writes the description of a large valid host to standard output.

namespace {

struct Option {
  std::string_view name;
  std::uint64_t* value;
  std::uint64_t least;
  std::uint64_t most;
};

/// The option's value from the word after it: plain decimal digits within its range.
bool ReadValue(const Option& option, std::string_view word) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size() || value < option.least || value > option.most) {
    return false;
  }
  *option.value = value;
  return true;
}

bool ReadWords(std::span<char* const> words, std::span<const Option> options) {
  if (words.size() % 2 != 0) {
    return false;
  }
  for (std::size_t index = 0; index < words.size(); index += 2) {
    bool understood = false;
    for (const Option& option : options) {
      if (option.name == words[index]) {
        understood = ReadValue(option, words[index + 1]);
      }
    }
    if (!understood) {
      return false;
    }
  }
  return true;
}

} // namespace

int main(int argumentCount, char** arguments) {
  simhost::MadeMachine machine;
  const Option options[] = {
      {"--arrays", &machine.arrays, 0, simhost::kMostArrays},
      {"--luns", &machine.luns, 0, simhost::kMostLuns},
      {"--paths", &machine.paths, 1, simhost::kMostPaths},
      {"--generation", &machine.generation, 1, 2},
      {"--seed", &machine.seed, 0, UINT64_MAX},
  };
  const auto words = std::span(arguments, static_cast<std::size_t>(argumentCount)).subspan(argumentCount > 0 ? 1 : 0);
  if (!ReadWords(words, options)) {
    std::fprintf(stderr,
                 "usage: makehost [--arrays 0-256] [--luns 0-256] [--paths 1-32] [--generation 1-2] [--seed N]\n");
    return 2;
  }
  const std::string text = simhost::MadeDescription(machine).Write() + "\n";
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "makehost: cannot write to standard output\n");
    return 1;
  }
  return 0;
}
