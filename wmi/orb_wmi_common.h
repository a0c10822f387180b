#pragma once

#include "platform/wbem.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// COM start-up and the conversions between VARIANTs and plain values in buffers.
class OrbWmiCommon {
public:
  /// Opens the layer trace's gate and starts COM in the multithreaded apartment; 0 or 1 (also when COM runs already).
  static wmiReturn Initialize();
  /// Sets the process-wide COM security; 0 (also when it was set before) or 1.
  static wmiReturn InitializeSecurity();

  /// Writes the caller's value into `target` by CIM type; 0, 1 (also without a value) or 4, with `target` unchanged on
  /// failure. What `target` held is overwritten, not released. An object's reference and an array pass to the target
  /// without being copied.
  static wmiReturn SetVariantType(VARIANT& target, const void* value, std::uint32_t length, std::uint32_t cimType);
  /// Reads `source` into `buffer` of `length` bytes by its VARTYPE (and, for texts, `cimType`); 0, 1 or 4. Never writes
  /// beyond `length`: a boolean fills at most its lower bytes of a shorter buffer, and an object is only read into a
  /// buffer of exactly a VARIANT's size, which must hold an initialised VARIANT.
  /// `delivered`, where it is given, gets the number of bytes of a byte array, which may be shorter than the buffer.
  static wmiReturn GetVariantData(const VARIANT& source, void* buffer, std::uint32_t length, std::uint32_t cimType,
                                  std::uint32_t* delivered = nullptr);
  /// Sets only the type tag of `target`; 0, or 1 for a CIM type outside the table.
  static wmiReturn SetCimType(VARIANT& target, std::uint32_t cimType);
  /// The decimal number that a text begins with; 0 without digits; no overflow check (modulo 2^64).
  static std::int64_t WideToInt64(const wchar_t* text);
};

} // namespace korvex
