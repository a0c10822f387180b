#pragma once

#include <cstdint>

namespace korvex {

/// Whether `text` is an unsigned decimal number of 32 bits: 1 yes (also the empty text), 0 no (also none), 3 too large.
int IsValidInteger(const char* text);

/// Reads a decimal or 0x-prefixed hexadecimal number of 32 bits: 1 with the value stored, or -1 after a message on
/// standard error that names the parameter, with nothing stored.
int ParseNumericValue(const char* text, const char* parameterName, std::uint32_t* valueOut);

/// The number that the leading decimal digits of `text` make, modulo 2^32; 0 without digits.
std::uint32_t LeadingDecimal(const char* text);

} // namespace korvex
