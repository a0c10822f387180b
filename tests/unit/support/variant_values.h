#pragma once

#include "platform/com_owners.h"

#include <memory>
#include <string_view>
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

inline Value BooleanValue(VARIANT_BOOL boolean) {
  Value value = EmptyValue(VT_BOOL);
  value->get().boolVal = boolean;
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

inline Value BytesValue(std::string_view bytes, LONG lower = 0) {
  SAFEARRAY* array = MakeArray(VT_UI1, bytes.size(), lower);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    LONG index = lower + static_cast<LONG>(at);
    char byte = bytes[at];
    SafeArrayPutElement(array, &index, &byte);
  }
  return ArrayValue(VT_UI1, array);
}

inline Value ObjectsValue(const std::vector<IUnknown*>& objects, LONG lower = 0) {
  SAFEARRAY* array = MakeArray(VT_UNKNOWN, objects.size(), lower);
  for (std::size_t at = 0; at < objects.size(); ++at) {
    LONG index = lower + static_cast<LONG>(at);
    SafeArrayPutElement(array, &index, objects[at]);
  }
  return ArrayValue(VT_UNKNOWN, array);
}

} // namespace korvex
