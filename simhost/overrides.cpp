#include "simhost/overrides.h"

#include "simhost/text.h"

#include <algorithm>

namespace simhost {

namespace {

constexpr std::size_t kMostRules = 10'000;
constexpr std::size_t kMostNameUnits = 32'767;
constexpr std::size_t kMostValueUnits = std::size_t{1} << 24;

constexpr CodeName kCimTypes[] = {
    {"sint8", CIM_SINT8},   {"uint8", CIM_UINT8},   {"sint16", CIM_SINT16},     {"uint16", CIM_UINT16},
    {"sint32", CIM_SINT32}, {"uint32", CIM_UINT32}, {"sint64", CIM_SINT64},     {"uint64", CIM_UINT64},
    {"real32", CIM_REAL32}, {"real64", CIM_REAL64}, {"boolean", CIM_BOOLEAN},   {"string", CIM_STRING},
    {"char16", CIM_CHAR16}, {"object", CIM_OBJECT}, {"datetime", CIM_DATETIME}, {"reference", CIM_REFERENCE},
};

struct IntegerRange {
  CIMTYPE type;
  std::int64_t least;
  std::uint64_t most;
};
constexpr IntegerRange kIntegerRanges[] = {
    {CIM_SINT8, INT8_MIN, INT8_MAX}, {CIM_UINT8, 0, UINT8_MAX},   {CIM_SINT16, INT16_MIN, INT16_MAX},
    {CIM_UINT16, 0, UINT16_MAX},     {CIM_CHAR16, 0, UINT16_MAX}, {CIM_SINT32, INT32_MIN, INT32_MAX},
    {CIM_UINT32, 0, UINT32_MAX},     {CIM_UINT64, 0, UINT64_MAX}, {CIM_SINT64, INT64_MIN, INT64_MAX},
};

CimValue ReadPlainValue(const Node& value, CIMTYPE type) {
  for (const IntegerRange& range : kIntegerRanges) {
    if (range.type == type) {
      return range.least < 0 ? CimValue(value.SignedNumber(range.least, static_cast<std::int64_t>(range.most)))
                             : CimValue(value.UnsignedNumber(0, range.most));
    }
  }
  switch (type) {
  case CIM_BOOLEAN:
    return value.Flag();
  case CIM_REAL32:
  case CIM_REAL64:
    return value.Real();
  case CIM_STRING:
  case CIM_DATETIME:
  case CIM_REFERENCE:
    return value.Text(kMostValueUnits);
  default:
    value.Refuse("null, as objects cannot be described here");
  }
}

/// A list or a byte array with that many elements: cut, or made longer with its last element (bytes: with zeros).
CimValue WithLength(const CimValue& value, std::size_t length) {
  if (const std::vector<std::uint8_t>* bytes = value.IfBytes()) {
    std::vector<std::uint8_t> changed = *bytes;
    changed.resize(length);
    return CimValue::Bytes(std::move(changed));
  }
  const std::vector<CimValue>* elements = value.IfArray();
  if (elements == nullptr || (elements->empty() && length != 0)) {
    return value;
  }
  std::vector<CimValue> changed = *elements;
  changed.resize(length, elements->empty() ? CimValue() : elements->back());
  return CimValue::Array(std::move(changed));
}

void RequireTrue(const Node& flag) {
  if (!flag.Flag()) {
    flag.Refuse("true");
  }
}

/// The class whose objects a rule is about; refuses a name that the host does not have.
ClassRef TargetClass(Members& members, const Repository& repository) {
  const Node className = members["class"];
  const Node method = members["method"];
  if (className.IsAbsent() == method.IsAbsent()) {
    members.Whole().Refuse("either \"class\" or \"method\" in it");
  }
  if (!className.IsAbsent()) {
    ClassRef definition = repository.FindClass(className.Text(kMostNameUnits));
    if (definition == nullptr) {
      className.Refuse("a class that this host publishes");
    }
    return definition;
  }
  const std::wstring name = method.Text(kMostNameUnits);
  for (const ClassRef& definition : repository.Classes()) {
    const MethodDefinition* found = definition->FindMethod(name);
    if (found != nullptr && found->outputClass != nullptr) {
      return found->outputClass;
    }
  }
  method.Refuse("a method with an output that this host publishes");
}

} // namespace

CIMTYPE ReadCimType(const Node& type) {
  std::vector<std::string> arrayNames;
  for (const CodeName& plain : kCimTypes) {
    arrayNames.push_back(std::string(plain.word) + "[]");
  }
  std::vector<CodeName> words(std::begin(kCimTypes), std::end(kCimTypes));
  for (std::size_t i = 0; i < arrayNames.size(); ++i) {
    words.push_back({arrayNames[i], kCimTypes[i].code | CIM_FLAG_ARRAY});
  }
  return type.Word<CIMTYPE>(words);
}

CimValue ReadCimValue(const Node& value, CIMTYPE type) {
  if (value.IsNull()) {
    return {};
  }
  if ((type & CIM_FLAG_ARRAY) == 0) {
    return ReadPlainValue(value, type);
  }
  if (type == (CIM_UINT8 | CIM_FLAG_ARRAY)) {
    return CimValue::Bytes(value.Bytes(kMostValueUnits));
  }
  std::vector<CimValue> elements;
  for (const Node& element : value.Elements(kMostValueUnits)) {
    elements.push_back(ReadPlainValue(element, type & ~CIM_FLAG_ARRAY));
  }
  return CimValue::Array(std::move(elements));
}

OverrideRules::OverrideRules(const Node& overrides, const Repository& repository) {
  for (const Node& override : overrides.Elements(kMostRules)) {
    m_rules.push_back(ReadRule(override, repository));
  }
}

OverrideRules::Rule OverrideRules::ReadRule(const Node& override, const Repository& repository) {
  Rule rule;
  ReadMembers(override, [&](Members& members) {
    const ClassRef target = TargetClass(members, repository);
    rule.target = target->LookupName();
    const Node property = members["property"];
    rule.property = property.Text(kMostNameUnits);
    if (!target->PropertyIndex(rule.property)) {
      property.Refuse("a property of " + Utf8FromWide(rule.target));
    }
    rule.occurrence = ReadOccurrence(members["occurrence"]);
    if (const Node index = members["index"]; !index.IsAbsent()) {
      rule.index = index.Unsigned<std::size_t>(0, UINT32_MAX);
    }
    rule.change = ReadChange(members);
  });
  return rule;
}

OverrideRules::Change OverrideRules::ReadChange(Members& members) {
  std::vector<Change> changes;
  if (const Node null = members["null"]; !null.IsAbsent()) {
    RequireTrue(null);
    changes.emplace_back([](CimObject& object, std::size_t at) { object.Force(at, {}, object.TypeAt(at)); });
  }
  if (const Node missing = members["missing"]; !missing.IsAbsent()) {
    RequireTrue(missing);
    changes.emplace_back([](CimObject& object, std::size_t at) { object.Hide(at); });
  }
  const Node value = members["value"];
  const Node typeName = members["type"];
  if (!value.IsAbsent() && !typeName.IsAbsent()) {
    const CIMTYPE type = ReadCimType(typeName);
    changes.emplace_back([type, replacement = ReadCimValue(value, type)](CimObject& object, std::size_t at) {
      object.Force(at, replacement, type);
    });
  }
  if (const Node bytes = members["bytes"]; !bytes.IsAbsent()) {
    changes.emplace_back(
        [replacement = CimValue::Bytes(bytes.Bytes(kMostValueUnits))](CimObject& object, std::size_t at) {
          object.Force(at, replacement, CIM_UINT8 | CIM_FLAG_ARRAY);
        });
  }
  if (const Node given = members["length"]; !given.IsAbsent()) {
    changes.emplace_back([length = given.Unsigned<std::size_t>(0, kMostValueUnits)](CimObject& object, std::size_t at) {
      object.Force(at, WithLength(object.ValueAt(at), length), object.TypeAt(at));
    });
  }
  if (changes.size() != 1 || value.IsAbsent() != typeName.IsAbsent()) {
    members.Whole().Refuse("one of \"null\", \"missing\", \"value\" with \"type\", \"bytes\", \"length\" in it");
  }
  return std::move(changes.front());
}

void OverrideRules::Apply(CimObject& object, std::size_t index) {
  for (Rule& rule : m_rules) {
    if ((rule.index && *rule.index != index) || !EqualNames(rule.target, object.Class()->LookupName()) ||
        !rule.occurrence.Covers(++rule.count)) {
      continue;
    }
    const std::optional<std::size_t> property = object.Class()->PropertyIndex(rule.property);
    if (property) {
      rule.change(object, *property);
    }
  }
}

} // namespace simhost
