#include "app/cli/console/print.h"
#include "app/cli/main_flow.h"

int main(int wordCount, char** words) {
  korvex::SetUpConsole();
  return korvex::RunGuarded(korvex::RunKorvex, wordCount, words);
}
