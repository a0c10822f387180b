#pragma once

#include <cstdint>

namespace korvex {

/// Status of every operation of the WMI layer that can fail.
using wmiReturn = std::uint32_t;

inline constexpr wmiReturn kWmiSuccess = 0;
/// A COM, WMI or runtime call failed, or a value cannot be converted.
inline constexpr wmiReturn kWmiRequestFailed = 1;
/// The end of an enumeration, of an array or of a name iteration.
inline constexpr wmiReturn kWmiNoMoreData = 2;
/// The named WMI class does not exist.
inline constexpr wmiReturn kWmiClassNotFound = 3;
inline constexpr wmiReturn kWmiOutOfMemory = 4;
/// A required object, buffer or argument is missing.
inline constexpr wmiReturn kWmiNotDefined = 5;
/// The connection is not open, or opening it failed.
inline constexpr wmiReturn kWmiNoConnection = 6;
/// The property's value is null.
inline constexpr wmiReturn kWmiNullValue = 7;
inline constexpr wmiReturn kWmiAccessDenied = 9;

} // namespace korvex
