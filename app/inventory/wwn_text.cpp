#include "app/inventory/wwn_text.h"

#include "app/cli/console/print.h"

namespace korvex {

void PrintWwnCharacters(const WwnCharacters& wwn) {
  for (const std::uint8_t character : wwn) {
    Print("%c", character);
  }
}

} // namespace korvex
