#pragma once

#include <cstdarg>
#include <cstddef>

namespace korvex {

/// The whole text that a format and its values make, however long: in place while it is short, on the heap otherwise.
/// errno may change.
class FormattedText {
public:
  FormattedText(const char* format, std::va_list values) __attribute__((format(printf, 2, 0)));
  ~FormattedText();
  FormattedText(const FormattedText&) = delete;
  FormattedText& operator=(const FormattedText&) = delete;

  /// The text with its terminator; empty when formatting failed, cut when the heap refused the room for the whole.
  const char* Text() const { return m_text; }
  /// Bytes of the text without the terminator.
  std::size_t Length() const { return m_length; }
  bool Succeeded() const { return m_succeeded; }

private:
  char m_short[1024];
  char* m_text = m_short;
  std::size_t m_length = 0;
  bool m_succeeded = false;
};

} // namespace korvex
