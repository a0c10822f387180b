#include "app/cli/option_scanner.h"

#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"

#include <cstring>

namespace korvex {

namespace {

char gEndOfWord[] = "";

bool IsWordAtEnd() {
  return *gScanPosition == '\0';
}

/// Puts the scan position behind the dash of the next word; false at the end of the options.
bool EnterNextWord(int wordCount, char** words) {
  if (gOptionIndex >= wordCount) {
    return false;
  }
  gScanPosition = words[gOptionIndex];
  if (gScanPosition[0] != '-' || gScanPosition[1] == '\0') {
    return false;
  }
  if (gScanPosition[1] == '-') {
    ++gOptionIndex;
    return false;
  }
  ++gScanPosition;
  return true;
}

int RefuseOption(const char* reason) {
  PrintError("%s: %s: %c\n", gProgramName != nullptr ? gProgramName : "getopt", reason, gOptionChar);
  return kOptionError;
}

/// Takes the rest of the word, or else the next word, as the option's argument.
int TakeArgument(int wordCount, char** words) {
  char* argument = gScanPosition;
  const bool isInNextWord = IsWordAtEnd();
  gScanPosition = gEndOfWord;
  if (isInNextWord) {
    ++gOptionIndex;
    if (gOptionIndex >= wordCount) {
      return RefuseOption("option requires an argument");
    }
    argument = words[gOptionIndex];
  }
  gOptionArgument = argument;
  ++gOptionIndex;
  return gOptionChar;
}

} // namespace

int getopt(int wordCount, char** words, const char* optionLetters) {
  if (IsWordAtEnd() && !EnterNextWord(wordCount, words)) {
    return kEndOfOptions;
  }
  gOptionChar = *gScanPosition++;
  const char* letter = gOptionChar == ':' ? nullptr : std::strchr(optionLetters, gOptionChar);
  if (letter != nullptr && letter[1] == ':') {
    return TakeArgument(wordCount, words);
  }
  if (IsWordAtEnd()) {
    ++gOptionIndex;
  }
  if (letter == nullptr) {
    return RefuseOption("illegal option");
  }
  gOptionArgument = nullptr;
  return gOptionChar;
}

} // namespace korvex
