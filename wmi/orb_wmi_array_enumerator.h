#pragma once

#include "wmi/orb_wmi_enumerator.h"

namespace korvex {

/// Builds an array of new embedded objects, element by element, to be sent as an array-valued argument.
class OrbWmiArrayEnumerator : public OrbWmiEnumerator {
public:
  OrbWmiArrayEnumerator() = default;
  ~OrbWmiArrayEnumerator();

  /// An array with room for `count` elements; 0, 4 or 5.
  wmiReturn Initialize(OrbWmiClass* elementClass, std::uint32_t count);
  /// A new element becomes the current instance; 0, 1 or 5.
  wmiReturn NewElementInstance();
  /// Stores the current instance as the next element and gives its place, counted from 0; 0, 1 or 5.
  wmiReturn SaveElementInstance(std::uint32_t* indexOut);
  /// Borrowed: the array lives as long as this object.
  SAFEARRAY* GetSafeArray() const { return m_SafeArray; }
  void cleanUp();

private:
  void CleanUpArray();

  std::uint32_t m_ElementCount = 0;
  std::uint32_t m_NextElement = 0;
  SAFEARRAY* m_SafeArray = nullptr;
};

} // namespace korvex
