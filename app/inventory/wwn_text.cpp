#include "app/inventory/wwn_text.h"

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
  Print("%s", WwnText(wwn).c_str());
}

WwnText::WwnText(const WwnBytes& wwn) {
  char* digit = m_digits;
  for (const std::uint8_t byte : wwn) {
    *digit++ = "0123456789abcdef"[byte >> 4];
    *digit++ = "0123456789abcdef"[byte & 0xF];
  }
  *digit = '\0';
}

} // namespace korvex
