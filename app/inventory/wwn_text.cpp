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

WwnText::WwnText(const WwnBytes& wwn) {
  for (std::size_t i = 0; i < wwn.size(); ++i) {
    BoundedFormat(m_digits + 2 * i, 3, "%02x", wwn[i]);
  }
}

} // namespace korvex
