#include "app/cli/main_flow.h"

int main(int wordCount, char** words) {
  return korvex::RunGuarded(korvex::RunKorvex, wordCount, words);
}
