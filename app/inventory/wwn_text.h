#pragma once

#include "app/inventory/gen2_records.h"
#include "app/inventory/rdac_info.h"

namespace korvex {

/// The 32 characters of a world-wide name on standard output, each as it is: a zero byte among them is printed too.
void PrintWwnCharacters(const WwnCharacters& wwn);

/// A world-wide name's 16 bytes on standard output, as 32 lower-case hexadecimal digits.
void PrintWwnBytes(const WwnBytes& wwn);

/// A world-wide name's 16 bytes as 32 lower-case hexadecimal digits.
class WwnText {
public:
  explicit WwnText(const WwnBytes& wwn);
  const char* c_str() const { return m_digits; }

private:
  char m_digits[33];
};

} // namespace korvex
