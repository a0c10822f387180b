#include "app/cli/console/formatted_text.h"

#include <cstdio>
#include <new>

namespace korvex {

FormattedText::FormattedText(const char* format, std::va_list values) {
  std::va_list valuesAgain;
  va_copy(valuesAgain, values);
  const int needed = std::vsnprintf(m_short, sizeof(m_short), format, values);
  if (needed < 0) {
    m_short[0] = '\0';
  } else if (static_cast<std::size_t>(needed) < sizeof(m_short)) {
    m_length = static_cast<std::size_t>(needed);
    m_succeeded = true;
  } else {
    const std::size_t capacity = static_cast<std::size_t>(needed) + 1;
    m_length = sizeof(m_short) - 1;
    char* room = new (std::nothrow) char[capacity];
    if (room != nullptr && std::vsnprintf(room, capacity, format, valuesAgain) == needed) {
      m_text = room;
      m_length = capacity - 1;
      m_succeeded = true;
    } else {
      delete[] room;
    }
  }
  va_end(valuesAgain);
}

FormattedText::~FormattedText() {
  if (m_text != m_short) {
    delete[] m_text;
  }
}

} // namespace korvex
