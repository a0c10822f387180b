#include "app/inventory/rdac_properties.h"

#include "platform/allocation.h"

namespace korvex {

std::uint32_t ReadNumber(OrbWmiEnumerator& object, const wchar_t* name, wmiReturn* statusOut) {
  std::uint32_t number = 0;
  const wmiReturn status = object.GetProperty(name, &number, sizeof number);
  if (statusOut != nullptr) {
    *statusOut = status;
  }
  return status == kWmiSuccess ? number : 0;
}

std::uint8_t ReadLowByte(OrbWmiEnumerator& object, const wchar_t* name) {
  return static_cast<std::uint8_t>(ReadNumber(object, name));
}

std::uint64_t ReadHandle(OrbWmiEnumerator& object, const wchar_t* name) {
  std::uint64_t handle = 0;
  return object.GetProperty(name, &handle, sizeof handle) == kWmiSuccess ? handle : 0;
}

std::uint32_t ReadFlags(OrbWmiEnumerator& object, std::span<const FlagProperty> properties) {
  std::uint32_t flags = 0;
  for (const FlagProperty& property : properties) {
    if ((ReadNumber(object, property.name) & 1) != 0) {
      flags |= property.bit;
    }
  }
  return flags;
}

ElementWalk::ElementWalk(OrbWmiEnumerator& owner, OrbWmiClass& elementClass, const wchar_t* propertyName) {
  owner.InitArrayEnumerator(&elementClass, propertyName, &m_elements);
}

ElementWalk::~ElementWalk() {
  platform::DeleteObject(m_elements);
}

} // namespace korvex
