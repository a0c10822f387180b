#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cwchar>

std::size_t platform::DefaultLocaleWcstombs(char* target, const wchar_t* text, std::size_t capacity) {
  // The runtime does not look at the characters that it only measures.
  const auto hasNoByte = [](wchar_t character) { return character > 0xFF; };
  if (target == nullptr && std::any_of(text, text + std::wcslen(text), hasNoByte)) {
    errno = EILSEQ;
    return static_cast<std::size_t>(-1);
  }
  return std::wcstombs(target, text, capacity);
}
