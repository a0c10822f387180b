#include "simhost/variant_values.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace simhost {

namespace {

VARTYPE VartypeOf(CIMTYPE type) {
  switch (type) {
  case CIM_UINT8:
    return VT_UI1;
  case CIM_SINT8:
  case CIM_SINT16:
  case CIM_CHAR16:
    return VT_I2;
  case CIM_UINT16:
  case CIM_SINT32:
  case CIM_UINT32:
    return VT_I4;
  case CIM_REAL32:
    return VT_R4;
  case CIM_REAL64:
    return VT_R8;
  case CIM_BOOLEAN:
    return VT_BOOL;
  case CIM_OBJECT:
    return VT_UNKNOWN;
  default:
    return VT_BSTR;
  }
}

bool Is64Bit(CIMTYPE type) {
  return type == CIM_SINT64 || type == CIM_UINT64;
}

bool IsInteger(CIMTYPE type) {
  switch (type) {
  case CIM_SINT8:
  case CIM_UINT8:
  case CIM_SINT16:
  case CIM_UINT16:
  case CIM_CHAR16:
  case CIM_SINT32:
  case CIM_UINT32:
  case CIM_SINT64:
  case CIM_UINT64:
    return true;
  default:
    return false;
  }
}

std::wstring DecimalText(const CimValue& value) {
  const std::int64_t* number = value.IfSigned();
  return number != nullptr ? std::to_wstring(*number) : std::to_wstring(value.Number());
}

HRESULT PutText(const std::wstring& text, VARIANT& variant) {
  variant.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return variant.bstrVal == nullptr ? WBEM_E_OUT_OF_MEMORY : WBEM_S_NO_ERROR;
}

/// Sets the payload of a plain value; the type tag is set by the caller.
HRESULT PutPlain(const CimValue& value, CIMTYPE type, const MakeObject& makeObject, VARIANT& variant) {
  const std::uint64_t number = value.Number();
  switch (VartypeOf(type)) {
  case VT_UI1:
    variant.bVal = static_cast<BYTE>(number);
    return WBEM_S_NO_ERROR;
  case VT_I2:
    variant.iVal = static_cast<SHORT>(number);
    return WBEM_S_NO_ERROR;
  case VT_I4:
    variant.lVal = static_cast<LONG>(number);
    return WBEM_S_NO_ERROR;
  case VT_R4:
    variant.fltVal = static_cast<float>(*value.IfReal());
    return WBEM_S_NO_ERROR;
  case VT_R8:
    variant.dblVal = *value.IfReal();
    return WBEM_S_NO_ERROR;
  case VT_BOOL:
    variant.boolVal = *value.IfBoolean() ? VARIANT_TRUE : VARIANT_FALSE;
    return WBEM_S_NO_ERROR;
  case VT_UNKNOWN:
    variant.punkVal = makeObject(*value.IfObject());
    return WBEM_S_NO_ERROR;
  default:
    return PutText(Is64Bit(type) ? DecimalText(value) : *value.IfText(), variant);
  }
}

/// Destroys the array at the end of its life, unless it was released.
class ArrayOwner {
public:
  explicit ArrayOwner(SAFEARRAY* array) : m_array(array) {}
  ArrayOwner(const ArrayOwner&) = delete;
  ArrayOwner& operator=(const ArrayOwner&) = delete;
  ~ArrayOwner() { SafeArrayDestroy(m_array); }
  SAFEARRAY* get() const { return m_array; }
  SAFEARRAY* Release() { return std::exchange(m_array, nullptr); }

private:
  SAFEARRAY* m_array;
};

/// Access to an array's data for its life.
class ArrayAccess {
public:
  explicit ArrayAccess(SAFEARRAY* array) : m_array(array) {
    if (array == nullptr || FAILED(SafeArrayAccessData(array, &m_data))) {
      m_data = nullptr;
    }
  }
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;
  ~ArrayAccess() {
    if (m_data != nullptr) {
      SafeArrayUnaccessData(m_array);
    }
  }
  /// The first element; none when there is no access.
  std::uint8_t* data() const { return static_cast<std::uint8_t*>(m_data); }

private:
  SAFEARRAY* m_array;
  void* m_data = nullptr;
};

std::size_t ElementBytes(VARTYPE type) {
  switch (type) {
  case VT_UI1:
    return 1;
  case VT_I2:
  case VT_BOOL:
    return 2;
  case VT_I4:
  case VT_R4:
    return 4;
  default:
    return 8;
  }
}

HRESULT PutBytes(const std::vector<std::uint8_t>& bytes, std::uint8_t* data) {
  if (!bytes.empty()) {
    std::memcpy(data, bytes.data(), bytes.size());
  }
  return WBEM_S_NO_ERROR;
}

/// What was stored before a failure is the array's to release.
HRESULT PutElements(const std::vector<CimValue>& elements, CIMTYPE type, const MakeObject& makeObject,
                    std::uint8_t* data) {
  const std::size_t width = ElementBytes(VartypeOf(type));
  for (const CimValue& value : elements) {
    VARIANT element = {};
    const HRESULT result = PutPlain(value, type, makeObject, element);
    if (FAILED(result)) {
      return result;
    }
    std::memcpy(data, &element.llVal, width);
    data += width;
  }
  return WBEM_S_NO_ERROR;
}

HRESULT PutArray(const CimValue& value, CIMTYPE elementType, const MakeObject& makeObject, VARIANT& variant) {
  const std::vector<std::uint8_t>* bytes = value.IfBytes();
  const std::vector<CimValue>* elements = value.IfArray();
  const VARTYPE type = VartypeOf(elementType);
  SAFEARRAYBOUND bound = {};
  bound.cElements = static_cast<ULONG>(bytes != nullptr ? bytes->size() : elements->size());
  ArrayOwner array(SafeArrayCreate(type, 1, &bound));
  {
    const ArrayAccess access(array.get());
    if (access.data() == nullptr) {
      return WBEM_E_OUT_OF_MEMORY;
    }
    const HRESULT result = bytes != nullptr ? PutBytes(*bytes, access.data())
                                            : PutElements(*elements, elementType, makeObject, access.data());
    if (FAILED(result)) {
      return result;
    }
  }
  variant.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  variant.parray = array.Release();
  return WBEM_S_NO_ERROR;
}

/// The number of a text: decimal with a sign or not, or "0x" and hexadecimal digits; null for anything else.
CimValue NumberFromText(BSTR text) {
  std::string digits;
  for (UINT i = 0; i < SysStringLen(text); ++i) {
    digits += text[i] < 0x80 ? static_cast<char>(text[i]) : '?';
  }
  std::string_view rest = digits;
  const bool isNegative = rest.starts_with('-');
  if (isNegative || rest.starts_with('+')) {
    rest.remove_prefix(1);
  }
  const bool isHex = rest.starts_with("0x") || rest.starts_with("0X");
  if (isHex) {
    rest.remove_prefix(2);
  }
  std::uint64_t magnitude = 0;
  const std::from_chars_result result =
      std::from_chars(rest.data(), rest.data() + rest.size(), magnitude, isHex ? 16 : 10);
  if (rest.empty() || result.ec != std::errc() || result.ptr != rest.data() + rest.size()) {
    return {};
  }
  if (!isNegative) {
    return magnitude;
  }
  constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
  return magnitude > kMostNegative ? CimValue() : CimValue(static_cast<std::int64_t>(0 - magnitude));
}

/// The integer that a VARIANT of any integer type or text holds; null for anything else.
CimValue NumberFromVariant(const VARIANT& variant) {
  switch (variant.vt) {
  case VT_I1:
    return static_cast<std::int8_t>(variant.bVal);
  case VT_UI1:
    return variant.bVal;
  case VT_I2:
    return variant.iVal;
  case VT_UI2:
    return static_cast<std::uint16_t>(variant.iVal);
  case VT_I4:
    return variant.lVal;
  case VT_UI4:
    return static_cast<std::uint32_t>(variant.lVal);
  case VT_BSTR:
    return NumberFromText(variant.bstrVal);
  default:
    return {};
  }
}

PutValue Mismatch() {
  return {WBEM_E_TYPE_MISMATCH, {}, false};
}

PutValue IntegerFromVariant(const VARIANT& variant, CIMTYPE type) {
  CimValue number = NumberFromVariant(variant);
  const bool isDocumented = variant.vt == VartypeOf(type);
  // The documented types carry unsigned numbers in signed fields of their width.
  if (isDocumented && type == CIM_UINT32) {
    number = static_cast<std::uint32_t>(variant.lVal);
  } else if (isDocumented && type == CIM_CHAR16) {
    number = static_cast<std::uint16_t>(variant.iVal);
  }
  if (number.IsNull() || !FitsType(number, type)) {
    return Mismatch();
  }
  return {WBEM_S_NO_ERROR, std::move(number), !isDocumented};
}

PutValue ObjectFromInterface(IUnknown* unknown, const PropertyDefinition& property, const FindObject& findObject) {
  ObjectRef object = findObject(unknown);
  if (object == nullptr || (!property.embeddedClass.empty() && !object->Class()->IsA(property.embeddedClass))) {
    return Mismatch();
  }
  return {WBEM_S_NO_ERROR, std::move(object), false};
}

PutValue PlainFromVariant(const VARIANT& variant, CIMTYPE type, const PropertyDefinition& property,
                          const FindObject& findObject) {
  if (IsInteger(type)) {
    return IntegerFromVariant(variant, type);
  }
  switch (type) {
  case CIM_REAL32:
  case CIM_REAL64:
    if (variant.vt == VT_R4) {
      return {WBEM_S_NO_ERROR, double{variant.fltVal}, type != CIM_REAL32};
    }
    return variant.vt == VT_R8 ? PutValue{WBEM_S_NO_ERROR, variant.dblVal, type != CIM_REAL64} : Mismatch();
  case CIM_BOOLEAN:
    return variant.vt == VT_BOOL ? PutValue{WBEM_S_NO_ERROR, variant.boolVal != VARIANT_FALSE, false} : Mismatch();
  case CIM_OBJECT:
    return variant.vt == VT_UNKNOWN ? ObjectFromInterface(variant.punkVal, property, findObject) : Mismatch();
  case CIM_STRING:
  case CIM_DATETIME:
  case CIM_REFERENCE:
    if (variant.vt == VT_BSTR) {
      return {WBEM_S_NO_ERROR,
              std::wstring(variant.bstrVal == nullptr ? L"" : variant.bstrVal, SysStringLen(variant.bstrVal)), false};
    }
    return Mismatch();
  default:
    return Mismatch();
  }
}

/// One element of an array's data as a VARIANT that owns nothing.
VARIANT ElementVariant(const std::uint8_t* data, VARTYPE type) {
  VARIANT element = {};
  element.vt = type;
  std::memcpy(&element.llVal, data, ElementBytes(type));
  return element;
}

PutValue ArrayFromVariant(const VARIANT& variant, const PropertyDefinition& property, const FindObject& findObject) {
  const CIMTYPE elementType = property.type & ~CIM_FLAG_ARRAY;
  const VARTYPE vartype = VartypeOf(elementType);
  LONG lower = 0;
  LONG upper = 0;
  if (variant.vt != (VT_ARRAY | vartype) || variant.parray == nullptr || variant.parray->cDims != 1 ||
      FAILED(SafeArrayGetLBound(variant.parray, 1, &lower)) || FAILED(SafeArrayGetUBound(variant.parray, 1, &upper))) {
    return Mismatch();
  }
  const ArrayAccess access(variant.parray);
  if (access.data() == nullptr) {
    return Mismatch();
  }
  const auto count = static_cast<std::size_t>(std::int64_t{upper} - lower + 1);
  if (elementType == CIM_UINT8) {
    return {WBEM_S_NO_ERROR, CimValue::Bytes({access.data(), access.data() + count}), false};
  }
  std::vector<CimValue> elements;
  for (std::size_t i = 0; i < count; ++i) {
    const VARIANT plain = ElementVariant(access.data() + i * ElementBytes(vartype), vartype);
    PutValue element = PlainFromVariant(plain, elementType, property, findObject);
    if (FAILED(element.result)) {
      return element;
    }
    elements.push_back(std::move(element.value));
  }
  return {WBEM_S_NO_ERROR, CimValue::Array(std::move(elements)), false};
}

} // namespace

HRESULT VariantFromValue(const CimValue& value, CIMTYPE type, const MakeObject& makeObject, VARIANT& variant) {
  VARIANT made = {};
  HRESULT result = WBEM_S_NO_ERROR;
  if (value.IsNull()) {
    made.vt = VT_NULL;
  } else if (!FitsType(value, type)) {
    return WBEM_E_FAILED;
  } else if ((type & CIM_FLAG_ARRAY) != 0) {
    result = PutArray(value, type & ~CIM_FLAG_ARRAY, makeObject, made);
  } else {
    made.vt = VartypeOf(type);
    result = PutPlain(value, type, makeObject, made);
  }
  if (SUCCEEDED(result)) {
    variant = made;
  }
  return result;
}

PutValue ValueFromVariant(const VARIANT& variant, const PropertyDefinition& property, const FindObject& findObject) {
  if (variant.vt == VT_NULL) {
    return {};
  }
  return (property.type & CIM_FLAG_ARRAY) != 0 ? ArrayFromVariant(variant, property, findObject)
                                               : PlainFromVariant(variant, property.type, property, findObject);
}

} // namespace simhost
