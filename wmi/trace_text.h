#pragma once

#include <cstdint>
#include <string>

// How wide text, pointers and 64-bit numbers are printed, alike on every system.

namespace korvex {

/// Wide text in the ANSI code page, '?' for what has no byte there; empty for none.
std::string NarrowText(const wchar_t* text);

/// A pointer as 16 upper-case hexadecimal digits, zero-filled.
std::string PointerText(const void* pointer);
/// The same for a 64-bit handle.
std::string PointerText(std::uint64_t handle);

} // namespace korvex
