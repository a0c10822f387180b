#include "app/inventory/wwn_text.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"

#include <cstring>

namespace korvex {

void PrintWwnCharacters(const WwnCharacters& wwn) {
  if (std::memchr(wwn.data(), 0, wwn.size()) == nullptr) {
    Print("%.*s", static_cast<int>(wwn.size()), reinterpret_cast<const char*>(wwn.data()));
    return;
  }
  for (const std::uint8_t character : wwn) {
    Print("%c", character);
  }
}

void PrintWwnBytes(const WwnBytes& wwn) {
  for (const std::uint8_t byte : wwn) {
    Print("%02x", byte);
  }
}

bool IsTextOfWwn(const char* text, const WwnBytes& wwn) {
  char digits[2 * sizeof wwn + 1] = {};
  for (std::size_t i = 0; i < wwn.size(); ++i) {
    BoundedFormat(digits + 2 * i, 3, "%02x", wwn[i]);
  }
  return std::strcmp(text, digits) == 0;
}

} // namespace korvex
