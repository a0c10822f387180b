#include "app/settings/removal_confirmation.h"

#include "app/cli/console/print.h"

#include <cstdio>

namespace korvex {

namespace {

enum class Answer { kYes, kNo, kUnclear };

/// One line of the console's input; only a line of one letter decides.
Answer ReadAnswer() {
  int letter = EOF;
  bool isOneLetter = true;
  for (int character = std::getchar(); character != '\n'; character = std::getchar()) {
    if (character == EOF) {
      return Answer::kNo;
    }
    isOneLetter = letter == EOF;
    letter = character;
  }
  if (!isOneLetter) {
    return Answer::kUnclear;
  }
  if (letter == 'y' || letter == 'Y') {
    return Answer::kYes;
  }
  return letter == 'n' || letter == 'N' ? Answer::kNo : Answer::kUnclear;
}

} // namespace

bool UtilpConfirmRemoval() {
  Print("\n> No Arrays were reported by the DSM.\n");
  Print("> All Device Specific settings will be removed.\n");
  Print("> Would you like to proceed?\n");
  Answer answer = Answer::kUnclear;
  while (answer == Answer::kUnclear) {
    Print("                                       (enter 'y/n') ");
    FlushConsole();
    answer = ReadAnswer();
  }
  Print("\n");
  if (answer == Answer::kNo) {
    Print("> Device Specific settings removal canceled.\n");
    return false;
  }
  return true;
}

} // namespace korvex
