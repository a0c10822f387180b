#include "simhost/cim.h"

#include "simhost/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace simhost {

namespace {

/// Whether an integer value lies in the range of T.
template <class T>
bool FitsInteger(const CimValue& value) {
  if (const std::int64_t* number = value.IfSigned()) {
    return std::in_range<T>(*number);
  }
  const std::uint64_t* number = value.IfUnsigned();
  return number != nullptr && std::in_range<T>(*number);
}

bool FitsPlainType(const CimValue& value, CIMTYPE type) {
  switch (type) {
  case CIM_SINT8:
    return FitsInteger<std::int8_t>(value);
  case CIM_UINT8:
    return FitsInteger<std::uint8_t>(value);
  case CIM_SINT16:
    return FitsInteger<std::int16_t>(value);
  case CIM_UINT16:
  case CIM_CHAR16:
    return FitsInteger<std::uint16_t>(value);
  case CIM_SINT32:
    return FitsInteger<std::int32_t>(value);
  case CIM_UINT32:
    return FitsInteger<std::uint32_t>(value);
  case CIM_SINT64:
    return FitsInteger<std::int64_t>(value);
  case CIM_UINT64:
    return FitsInteger<std::uint64_t>(value);
  case CIM_REAL32:
  case CIM_REAL64:
    return value.IfReal() != nullptr;
  case CIM_BOOLEAN:
    return value.IfBoolean() != nullptr;
  case CIM_STRING:
  case CIM_DATETIME:
  case CIM_REFERENCE:
    return value.IfText() != nullptr;
  case CIM_OBJECT:
    return value.IfObject() != nullptr;
  default:
    return false;
  }
}

template <class Definition>
std::optional<std::size_t> IndexOf(const std::vector<Definition>& definitions, std::wstring_view name) {
  const auto found = std::find_if(definitions.begin(), definitions.end(),
                                  [&](const Definition& definition) { return EqualNames(definition.name, name); });
  return found == definitions.end() ? std::nullopt
                                    : std::optional(static_cast<std::size_t>(found - definitions.begin()));
}

} // namespace

CimValue CimValue::Bytes(std::vector<std::uint8_t> bytes) {
  return std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
}

CimValue CimValue::Embed(CimObject object) {
  return std::make_shared<const CimObject>(std::move(object));
}

CimValue CimValue::Embed(std::vector<CimObject> objects) {
  std::vector<CimValue> elements;
  elements.reserve(objects.size());
  for (CimObject& object : objects) {
    elements.push_back(Embed(std::move(object)));
  }
  return Array(std::move(elements));
}

CimValue CimValue::Array(std::vector<CimValue> elements) {
  return std::make_shared<const std::vector<CimValue>>(std::move(elements));
}

const std::vector<std::uint8_t>* CimValue::IfBytes() const {
  const BytesRef* bytes = std::get_if<BytesRef>(&m_value);
  return bytes == nullptr ? nullptr : bytes->get();
}

const CimObject* CimValue::IfObject() const {
  const ObjectRef* object = std::get_if<ObjectRef>(&m_value);
  return object == nullptr ? nullptr : object->get();
}

const std::vector<CimValue>* CimValue::IfArray() const {
  const ArrayRef* array = std::get_if<ArrayRef>(&m_value);
  return array == nullptr ? nullptr : array->get();
}

std::uint64_t CimValue::Number(std::uint64_t fallback) const {
  if (const std::int64_t* number = IfSigned()) {
    return static_cast<std::uint64_t>(*number);
  }
  const std::uint64_t* number = IfUnsigned();
  return number == nullptr ? fallback : *number;
}

std::wstring_view CimValue::TextOrEmpty() const {
  const std::wstring* text = IfText();
  return text == nullptr ? std::wstring_view() : *text;
}

PropertyDefinition Property(std::wstring_view name, CIMTYPE type, CimValue initial) {
  return {std::wstring(name), type, {}, false, std::move(initial)};
}

PropertyDefinition Key(std::wstring_view name) {
  return {std::wstring(name), CIM_STRING, {}, true, {}};
}

PropertyDefinition Embedded(std::wstring_view name, std::wstring_view className) {
  return {std::wstring(name), CIM_OBJECT, std::wstring(className), false, {}};
}

PropertyDefinition EmbeddedArray(std::wstring_view name, std::wstring_view className) {
  return {std::wstring(name), CIM_OBJECT | CIM_FLAG_ARRAY, std::wstring(className), false, {}};
}

bool CimClass::IsA(std::wstring_view className) const {
  return EqualNames(name, className) ||
         std::any_of(ancestors.begin(), ancestors.end(),
                     [&](const std::wstring& ancestor) { return EqualNames(ancestor, className); });
}

std::optional<std::size_t> CimClass::PropertyIndex(std::wstring_view propertyName) const {
  return IndexOf(properties, propertyName);
}

const MethodDefinition* CimClass::FindMethod(std::wstring_view methodName) const {
  const std::optional<std::size_t> index = IndexOf(methods, methodName);
  return index ? &methods[*index] : nullptr;
}

bool FitsType(const CimValue& value, CIMTYPE type) {
  if (value.IsNull()) {
    return true;
  }
  if ((type & CIM_FLAG_ARRAY) == 0) {
    return FitsPlainType(value, type);
  }
  const CIMTYPE elementType = type & ~CIM_FLAG_ARRAY;
  if (elementType == CIM_UINT8 && value.IfBytes() != nullptr) {
    return true;
  }
  const std::vector<CimValue>* elements = value.IfArray();
  return elements != nullptr && std::all_of(elements->begin(), elements->end(), [&](const CimValue& element) {
           return FitsPlainType(element, elementType);
         });
}

CimObject::CimObject(ClassRef definition, bool isDefinition)
    : m_class(std::move(definition)), m_isDefinition(isDefinition) {
  if (m_class == nullptr) {
    throw std::invalid_argument("an object without a class");
  }
  m_slots.reserve(m_class->properties.size());
  for (const PropertyDefinition& property : m_class->properties) {
    m_slots.push_back(Slot{property.initial, property.type, false});
  }
}

const CimValue& CimObject::Value(std::wstring_view property) const {
  static const CimValue null;
  const std::optional<std::size_t> index = m_class->PropertyIndex(property);
  return index && !m_slots[*index].missing ? m_slots[*index].value : null;
}

CimObject& CimObject::Set(std::wstring_view property, CimValue value) {
  const std::optional<std::size_t> index = m_class->PropertyIndex(property);
  if (!index) {
    throw std::invalid_argument(Utf8FromWide(m_class->name) + " has no property " + Utf8FromWide(property));
  }
  if (!FitsType(value, m_class->properties[*index].type)) {
    throw std::invalid_argument("the value does not fit " + Utf8FromWide(m_class->name) + "." + Utf8FromWide(property));
  }
  m_slots[*index].value = std::move(value);
  return *this;
}

void CimObject::Force(std::size_t index, CimValue value, CIMTYPE type) {
  m_slots[index].value = std::move(value);
  m_slots[index].type = type;
}

} // namespace simhost
