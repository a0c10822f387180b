#pragma once

#include "platform/com_owners.h"

#include <memory>
#include <string>
#include <vector>

// VARIANTs as tests write them down.

namespace korvex {

/// An owned VARIANT that copies of this share.
using Value = std::shared_ptr<platform::Variant>;

inline Value EmptyValue(VARTYPE type = VT_EMPTY) {
  auto value = std::make_shared<platform::Variant>();
  value->get().vt = type;
  return value;
}

inline Value NumberValue(LONG number, VARTYPE type = VT_I4) {
  Value value = EmptyValue(type);
  value->get().lVal = number;
  return value;
}

inline Value TextValue(const wchar_t* text) {
  Value value = EmptyValue(VT_BSTR);
  value->get().bstrVal = SysAllocString(text);
  return value;
}

inline Value ObjectValue(IUnknown* object) {
  Value value = EmptyValue(VT_UNKNOWN);
  value->get().punkVal = object;
  if (object != nullptr) {
    object->AddRef();
  }
  return value;
}

inline SAFEARRAY* MakeArray(VARTYPE type, std::size_t count, LONG lower = 0) {
  SAFEARRAYBOUND bound;
  bound.cElements = static_cast<ULONG>(count);
  bound.lLbound = lower;
  return SafeArrayCreate(type, 1, &bound);
}

inline Value ArrayValue(VARTYPE type, SAFEARRAY* array) {
  Value value = EmptyValue(static_cast<VARTYPE>(VT_ARRAY | type));
  value->get().parray = array;
  return value;
}

/// An array whose elements are what `element` gives the address of, by their place.
template <class ElementAt>
Value FilledArray(VARTYPE type, std::size_t count, LONG lower, ElementAt element) {
  SAFEARRAY* array = MakeArray(type, count, lower);
  for (std::size_t at = 0; at < count; ++at) {
    LONG index = lower + static_cast<LONG>(at);
    SafeArrayPutElement(array, &index, element(at));
  }
  return ArrayValue(type, array);
}

inline Value BytesValue(std::string bytes, LONG lower = 0) {
  return FilledArray(VT_UI1, bytes.size(), lower, [&](std::size_t at) { return &bytes[at]; });
}

inline Value ObjectsValue(const std::vector<IUnknown*>& objects, LONG lower = 0) {
  return FilledArray(VT_UNKNOWN, objects.size(), lower, [&](std::size_t at) { return objects[at]; });
}

} // namespace korvex
