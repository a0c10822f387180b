#include "fuzz/input.h"
#include "fuzz/whole_run.h"
#include "simhost/host.h"

// Whole runs on the ready-made hosts with words that look like those of a command line.

namespace {

using fuzzing::Input;

/// What words are made of.
constexpr const char* kPieces[] = {"-",
                                   "a",
                                   "c",
                                   "d",
                                   "e",
                                   "g",
                                   "h",
                                   "o",
                                   "s",
                                   "t",
                                   "w",
                                   "x",
                                   "D",
                                   "M",
                                   "P",
                                   "R",
                                   "S",
                                   "0",
                                   "0x",
                                   "9",
                                   "4294967295",
                                   "4294967296",
                                   ",",
                                   "=",
                                   ":",
                                   " ",
                                   "Atlas",
                                   "missing",
                                   "60a1b2c3000d4e5f0000000000000a01",
                                   "extended",
                                   "busscan",
                                   "RetryInterval",
                                   "LoadBalancePolicy",
                                   "SetPathOffline",
                                   "SaveSettings",
                                   "GetMpioParameters",
                                   "PDORemovePeriod",
                                   "zelmpxdsm",
                                   "oemdsm"};

std::string Word(Input& input) {
  std::string word = input.Choice(2) == 0 ? "-" : "";
  for (std::size_t pieces = input.Choice(6); pieces > 0; --pieces) {
    word += input.Choice(8) == 0 ? input.Text(60) : input.OneOf(kPieces);
  }
  // A word ends at its first zero byte.
  return word.c_str();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const simhost::Json& host = input.OneOf(fuzzing::ReadyMadeHosts());
  std::vector<std::string> words;
  while (words.size() < 12 && !input.IsAtEnd()) {
    words.push_back(Word(input));
  }
  fuzzing::RunOn(simhost::ReadHost(host.Write(), ""), words);
  fuzzing::RemoveFiles();
  return 0;
}
