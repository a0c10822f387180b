#pragma once

#include "platform/wbem.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// Holds one VARIANT: an input argument, an output argument, or an array of embedded objects. Owns what the VARIANT
/// holds, except an array given to SetProperty, which stays its maker's.
class OrbWmiVariant {
public:
  /// Whether the destruction leaves its trace line. A holder that the layer keeps for itself is silent.
  enum class Destruction { kTraced, kSilent };

  explicit OrbWmiVariant(Destruction destruction = Destruction::kTraced);
  ~OrbWmiVariant();
  OrbWmiVariant(const OrbWmiVariant&) = delete;
  OrbWmiVariant& operator=(const OrbWmiVariant&) = delete;

  /// Traces, and clears the held value; run on destruction.
  void cleanUp();
  /// Changes nothing; gives 0.
  wmiReturn Initialize();
  /// The held VARIANT itself, to be read or filled by WMI calls.
  VARIANT& GetVariant() { return m_Variant; }
  /// Replaces the held value by a copy of `source`; 0 or 1.
  wmiReturn CopyVariant(const VARIANT& source);
  /// Empties the holder; 0.
  wmiReturn Clear();
  /// Reads the held value, taken as `cimType`, into `buffer` of `length` bytes, which is not cleared first; 0, 1, 4
  /// or 7. A held value of another kind (number, text, object, array) than `cimType` is refused with 1 and keeps its
  /// tag.
  wmiReturn GetProperty(void* buffer, std::uint32_t length, std::uint32_t cimType);
  /// Writes the caller's value in the form of `cimType` (OrbWmiCommon::SetVariantType); for CIM_OBJECT the holder takes
  /// over the caller's reference. 0, 1 or 4; a refused write leaves the held value as it was.
  wmiReturn SetProperty(const void* value, std::uint32_t length, std::uint32_t cimType);
  /// Element `index`, counted from 0, of a held array of embedded objects into `out`, with a reference for the caller;
  /// 0, 1, 2 past the end or without an array, 5 without `out`.
  wmiReturn GetElement(std::int32_t index, IWbemClassObject** out);

private:
  /// Releases the value that the holder had, but not an array that belongs to its maker.
  void Release(VARIANT& value);
  wmiReturn ElementAt(std::int32_t index, IWbemClassObject** out);

  /// Zeroed whole: a type tag may be set before there is a value, and VariantInit promises no more than the tag.
  VARIANT m_Variant = {};
  SAFEARRAY* m_BorrowedArray = nullptr;
  Destruction m_Destruction;
};

} // namespace korvex
