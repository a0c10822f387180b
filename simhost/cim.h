#pragma once

#include "platform/wbem.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// The CIM data model, independent of COM: values, properties, methods, classes and objects.
//
// Large payloads (bytes, arrays, embedded objects) are shared and never change once made, so copying a value or an
// object costs a few words per property, however long its records are.
//
//   CimClass version;
//   version.name = L"VRXDSM_VERSION";
//   version.properties = {Property(L"MajorVersion", CIM_UINT32), Property(L"MinorVersion", CIM_UINT32)};
//   repository.AddClass(std::move(version));
//   ...
//   CimObject answer(repository.RequireClass(L"VRXDSM_VERSION"));
//   answer.Set(L"MajorVersion", 2).Set(L"MinorVersion", 1);
//   output.Set(L"DSMVersion", CimValue::Embed(std::move(answer)));

namespace simhost {

class CimObject;
class CimValue;
using ObjectRef = std::shared_ptr<const CimObject>;
using BytesRef = std::shared_ptr<const std::vector<std::uint8_t>>;
using ArrayRef = std::shared_ptr<const std::vector<CimValue>>;

/// One value; null by default.
class CimValue {
public:
  CimValue() = default;
  CimValue(bool value) : m_value(value) {}
  template <std::signed_integral T>
  CimValue(T value) : m_value(static_cast<std::int64_t>(value)) {}
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) CimValue(T value) : m_value(static_cast<std::uint64_t>(value)) {}
  CimValue(double value) : m_value(value) {}
  CimValue(std::wstring value) : m_value(std::move(value)) {}
  CimValue(const wchar_t* value) : m_value(std::wstring(value)) {}
  CimValue(ObjectRef value) : m_value(std::move(value)) {}
  CimValue(BytesRef value) : m_value(std::move(value)) {}
  CimValue(ArrayRef value) : m_value(std::move(value)) {}

  /// A byte array (CIM type uint8[]).
  static CimValue Bytes(std::vector<std::uint8_t> bytes);
  /// An embedded object, or an array of them.
  static CimValue Embed(CimObject object);
  static CimValue Embed(std::vector<CimObject> objects);
  static CimValue Array(std::vector<CimValue> elements);

  bool IsNull() const { return std::holds_alternative<std::monostate>(m_value); }
  const bool* IfBoolean() const { return std::get_if<bool>(&m_value); }
  const std::int64_t* IfSigned() const { return std::get_if<std::int64_t>(&m_value); }
  const std::uint64_t* IfUnsigned() const { return std::get_if<std::uint64_t>(&m_value); }
  const double* IfReal() const { return std::get_if<double>(&m_value); }
  const std::wstring* IfText() const { return std::get_if<std::wstring>(&m_value); }
  /// The held payload, or none when the value is of another kind.
  const std::vector<std::uint8_t>* IfBytes() const;
  const CimObject* IfObject() const;
  const std::vector<CimValue>* IfArray() const;

  /// The number modulo 2^64, whichever way it is held; the fallback for anything that is no integer.
  std::uint64_t Number(std::uint64_t fallback = 0) const;
  /// The text, or the empty one for anything else.
  std::wstring_view TextOrEmpty() const;

private:
  std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::wstring, BytesRef, ObjectRef, ArrayRef>
      m_value;
};

/// A property of a class, or a parameter of a method.
struct PropertyDefinition {
  std::wstring name;
  CIMTYPE type = CIM_EMPTY;   ///< with CIM_FLAG_ARRAY for arrays
  std::wstring embeddedClass; ///< for CIM_OBJECT and its arrays: the class of the objects, empty for any
  bool key = false;
  CimValue initial; ///< what a spawned instance starts with; null unless given
};

PropertyDefinition Property(std::wstring_view name, CIMTYPE type, CimValue initial = {});
/// A key property, of text.
PropertyDefinition Key(std::wstring_view name);
/// A property that holds an object of that class, or an array of them.
PropertyDefinition Embedded(std::wstring_view name, std::wstring_view className);
PropertyDefinition EmbeddedArray(std::wstring_view name, std::wstring_view className);

class CimClass;
using ClassRef = std::shared_ptr<const CimClass>;

/// A method: without inputs it has no input object, without outputs no output object.
struct MethodDefinition {
  std::wstring name;
  std::vector<PropertyDefinition> inputs;
  std::vector<PropertyDefinition> outputs;
  ClassRef inputClass{};  ///< the class __PARAMETERS of the input object, made by the repository; none without inputs
  ClassRef outputClass{}; ///< the same for the output object
};

/// A class: what an object has and can do. Names are matched without regard to case and keep their spelling.
class CimClass {
public:
  std::wstring name;
  std::wstring superclass; ///< empty for a top-level class
  std::wstring method;     ///< for the parameters of a method: its name; empty for any other class
  std::vector<PropertyDefinition> properties;
  std::vector<MethodDefinition> methods;
  std::vector<std::wstring> ancestors; ///< nearest first, filled in by the repository

  /// What faults and overrides call it: the method for the parameters of one, else its own name.
  const std::wstring& LookupName() const { return method.empty() ? name : method; }
  /// Whether this is the class of that name or derived from it.
  bool IsA(std::wstring_view className) const;
  /// The position of the property (or method) of that name; none when there is none.
  std::optional<std::size_t> PropertyIndex(std::wstring_view propertyName) const;
  const MethodDefinition* FindMethod(std::wstring_view methodName) const;
};

/// Whether a value may stand in a property of that CIM type: of its kind and within its range (null always may).
bool FitsType(const CimValue& value, CIMTYPE type);

/// A class definition or an instance, by value.
class CimObject {
public:
  /// An instance with the class's initial values, or the class definition itself.
  explicit CimObject(ClassRef definition, bool isDefinition = false);

  const ClassRef& Class() const { return m_class; }
  bool IsDefinition() const { return m_isDefinition; }

  /// The value of the property; null for one that the object does not have.
  const CimValue& Value(std::wstring_view property) const;

  /// Sets a property. Throws std::invalid_argument for a property that the class does not have or a value that does not
  /// fit its type: a mistake of the provider, which the repository turns into WBEM_E_PROVIDER_FAILURE.
  CimObject& Set(std::wstring_view property, CimValue value);

  // By position, as the COM object and the overrides need it.
  std::size_t Count() const { return m_slots.size(); }
  const CimValue& ValueAt(std::size_t index) const { return m_slots[index].value; }
  CIMTYPE TypeAt(std::size_t index) const { return m_slots[index].type; }
  bool IsMissingAt(std::size_t index) const { return m_slots[index].missing; }
  /// Replaces value and told type without any check: what a broken driver would send.
  void Force(std::size_t index, CimValue value, CIMTYPE type);
  /// Makes the property one that the object does not have.
  void Hide(std::size_t index) { m_slots[index].missing = true; }

  /// The object's relative path: CLASS for a definition, CLASS.Key="value" for an instance (backslashes doubled, quotes
  /// escaped); none for an instance without keys or with a key that has no value.
  std::optional<std::wstring> RelativePath() const;

private:
  struct Slot {
    CimValue value;
    CIMTYPE type;
    bool missing;
  };
  ClassRef m_class;
  bool m_isDefinition;
  std::vector<Slot> m_slots;
};

} // namespace simhost
