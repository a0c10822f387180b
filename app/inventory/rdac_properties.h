#pragma once

#include "wmi/orb_wmi_enumerator.h"

#include <cstdint>
#include <span>

// How the properties of generation-1 answers are read. A property that cannot be read is 0.

namespace korvex {

/// A number of at most 32 bits; its status goes to `statusOut`, unless it is none.
std::uint32_t ReadNumber(OrbWmiEnumerator& object, const wchar_t* name, wmiReturn* statusOut = nullptr);
/// The low byte of such a number.
std::uint8_t ReadLowByte(OrbWmiEnumerator& object, const wchar_t* name);
/// An opaque handle or another number of 64 bits.
std::uint64_t ReadHandle(OrbWmiEnumerator& object, const wchar_t* name);

/// A property whose lowest bit becomes a flag.
struct FlagProperty {
  const wchar_t* name;
  std::uint32_t bit;
};
/// Reads the properties in their order; the bits of those that are set.
std::uint32_t ReadFlags(OrbWmiEnumerator& object, std::span<const FlagProperty> properties);

/// A property of 32 bits and the field that keeps it.
template <class Record>
struct NumberProperty {
  const wchar_t* name;
  std::uint32_t Record::*field;
};
template <class Record>
void ReadNumbers(OrbWmiEnumerator& object, std::span<const NumberProperty<Record>> properties, Record& record) {
  for (const NumberProperty<Record>& property : properties) {
    record.*property.field = ReadNumber(object, property.name);
  }
}

/// A property of which a field keeps the low byte.
template <class Record>
struct ByteProperty {
  const wchar_t* name;
  std::uint8_t Record::*field;
};
template <class Record>
void ReadLowBytes(OrbWmiEnumerator& object, std::span<const ByteProperty<Record>> properties, Record& record) {
  for (const ByteProperty<Record>& property : properties) {
    record.*property.field = ReadLowByte(object, property.name);
  }
}

/// Walks an array of embedded objects from its first element on.
class ElementWalk {
public:
  /// The elements of a property of `owner`; none when there is no such array.
  ElementWalk(OrbWmiEnumerator& owner, OrbWmiClass& elementClass, const wchar_t* propertyName);
  ~ElementWalk();
  ElementWalk(const ElementWalk&) = delete;
  ElementWalk& operator=(const ElementWalk&) = delete;

  /// Whether the array could be opened.
  bool IsOpen() const { return m_elements != nullptr; }
  /// Stands on the next element; false at the end, or when the element cannot be had.
  bool Next() { return m_elements->GetElement(m_next++) == kWmiSuccess; }
  OrbWmiEnumerator& Element() { return *m_elements; }

private:
  OrbWmiEnumerator* m_elements = nullptr;
  std::int32_t m_next = 0;
};

} // namespace korvex
