#include "app/cli/console/run_state.h"
#include "app/cli/option_scanner.h"
#include "app/cli/option_table.h"
#include "tests/unit/support/capture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvex {
namespace {

struct ScanResult {
  std::string steps; ///< each letter, with its argument in parentheses if it took one, and "." at the end
  std::int32_t index;
  std::string messages;
};

/// Scans the words with the utility's own letters until the end of the options.
ScanResult Scan(std::vector<std::string> words, const char* programName = "k") {
  ResetRunState();
  gProgramName = programName;
  char letters[80];
  FormatOptionLetters(letters, sizeof(letters));
  std::vector<char*> pointers;
  pointers.reserve(words.size());
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  ScanResult result;
  const CapturedOutput output = Capture([&] {
    for (int step = 0; step < 100; ++step) {
      const int option = getopt(static_cast<int>(pointers.size()), pointers.data(), letters);
      if (option == kEndOfOptions) {
        result.steps += ".";
        return;
      }
      result.steps.push_back(static_cast<char>(option));
      if (option != kOptionError && gOptionArgument != nullptr) {
        result.steps += "(" + std::string(gOptionArgument) + ")";
      }
      result.steps += " ";
    }
  });
  result.index = gOptionIndex;
  result.messages = output.err;
  EXPECT_EQ(output.out, "");
  ResetRunState();
  return result;
}

TEST(OptionScanner, GivesLettersArgumentsAndMessages) {
  const std::string illegal = "k: illegal option: ";
  const std::string lacking = "k: option requires an argument: ";
  struct Case {
    std::vector<std::string> words;
    const char* steps;
    std::int32_t index;
    std::string messages;
  };
  const Case cases[] = {
      // Nothing to scan.
      {{}, ".", 1, ""},
      {{"k"}, ".", 1, ""},
      {{"k", ""}, ".", 1, ""},
      {{"k", "a", "-t"}, ".", 1, ""},
      {{"k", "-"}, ".", 1, ""},
      {{"k", "--", "-a"}, ".", 2, ""},
      {{"k", "--x", "-a"}, ".", 2, ""},
      // Letters, alone and several in a word.
      {{"k", "-a"}, "a .", 2, ""},
      {{"k", "-ta", "-S"}, "t a S .", 3, ""},
      {{"k", "-agchtmlowSDMR"}, "a g c h t m l o w S D M R .", 2, ""},
      {{"k", "-a", "name", "-t"}, "a .", 2, ""},
      {{"k", "-a", "--", "-t"}, "a .", 3, ""},
      {{"k", "-a", "-", "-t"}, "a .", 2, ""},
      // Arguments, in the word and in the next.
      {{"k", "-d0x10", "-a"}, "d(0x10) a .", 3, ""},
      {{"k", "-d", "0x10", "-a"}, "d(0x10) a .", 4, ""},
      {{"k", "-td", "5", "-e6"}, "t d(5) e(6) .", 4, ""},
      {{"k", "-s", "-a"}, "s(-a) .", 3, ""},
      {{"k", "-P", "--"}, "P(--) .", 3, ""},
      {{"k", "-e", ""}, "e() .", 3, ""},
      {{"k", "-d"}, "? .", 2, lacking + "d\n"},
      {{"k", "-ad"}, "a ? .", 2, lacking + "d\n"},
      // Letters that are not known.
      {{"k", "-x", "-a"}, "? a .", 3, illegal + "x\n"},
      {{"k", "-xa"}, "? a .", 2, illegal + "x\n"},
      {{"k", "-ax", "-t"}, "a ? t .", 3, illegal + "x\n"},
      {{"k", "-:"}, "? .", 2, illegal + ":\n"},
      {{"k", "-a:S"}, "a ? S .", 2, illegal + ":\n"},
      {{"k", "-a-S"}, "a ? S .", 2, illegal + "-\n"},
      {{"k", "-?"}, "? .", 2, illegal + "?\n"},
      {{"k", "-\xE9\xFF"}, "? ? .", 2, illegal + "\xE9\n" + illegal + "\xFF\n"},
  };
  for (const Case& row : cases) {
    const ScanResult result = Scan(row.words);
    const std::string shown = testing::PrintToString(row.words);
    EXPECT_EQ(result.steps, row.steps) << shown;
    EXPECT_EQ(result.index, row.index) << shown;
    EXPECT_EQ(result.messages, row.messages) << shown;
  }
}

TEST(OptionScanner, SpeaksForItselfWithoutAProgramName) {
  EXPECT_EQ(Scan({"", "-x"}, nullptr).messages, "getopt: illegal option: x\n");
  EXPECT_EQ(Scan({"", "-d"}, nullptr).messages, "getopt: option requires an argument: d\n");
}

TEST(OptionScanner, NeverCutsWords) {
  const std::string name(100'000, 'k');
  EXPECT_EQ(Scan({name, "-x"}, name.c_str()).messages, name + ": illegal option: x\n");
  const std::string argument(100'000, 'v');
  EXPECT_EQ(Scan({"k", "-d" + argument}).steps, "d(" + argument + ") .");
}

} // namespace
} // namespace korvex
