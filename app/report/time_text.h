#pragma once

#include <cstddef>
#include <cstdint>

namespace korvex {

/// The time of day "hh:mm:ss" (UTC) of `seconds` since 1970-01-01 00:00:00 UTC, or of a duration below one day, into
/// `text` of `capacity` bytes (at least 9); "Format error" when the system cannot convert it.
void FormatTimeOfDay(std::uint32_t seconds, char* text, std::size_t capacity);

} // namespace korvex
