#pragma once

#include <cstdint>
#include <string>

// How wide text and pointers are printed, alike on every system.

namespace korvex {

/// Wide text in the ANSI code page, '?' for what has no byte there; empty for none and when memory cannot be had.
std::string NarrowText(const wchar_t* text);

/// A pointer, or a 64-bit handle, as 16 upper-case hexadecimal digits, zero-filled.
class PointerText {
public:
  explicit PointerText(const void* pointer);
  explicit PointerText(std::uint64_t handle);

  const char* c_str() const { return m_digits; }

private:
  char m_digits[17];
};

} // namespace korvex
