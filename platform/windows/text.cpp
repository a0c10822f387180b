#include "platform/text.h"

#include <cstdlib>

std::size_t platform::DefaultLocaleWcstombs(char* target, const wchar_t* text, std::size_t capacity) {
  return std::wcstombs(target, text, capacity);
}
