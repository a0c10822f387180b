#include "simhost/module_record.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace simhost {
namespace {

/// The part and the key within it; an empty part for a key of the object itself.
std::pair<std::string_view, std::string_view> Split(std::string_view key) {
  const std::size_t dot = key.find('.');
  return dot == std::string_view::npos ? std::pair(std::string_view(), key)
                                       : std::pair(key.substr(0, dot), key.substr(dot + 1));
}

std::uint64_t ReadValue(const Node& value, const ModuleProperty& property) {
  if (property.read != nullptr) {
    return property.read(value);
  }
  if (property.flag && value.Value()->IfBoolean() != nullptr) {
    return value.Flag() ? 1 : 0;
  }
  const std::uint64_t most = property.type == CIM_UINT64 ? UINT64_MAX : UINT32_MAX;
  return property.words.empty() ? value.UnsignedNumber(0, most) : value.CodeNumber(property.words, most);
}

} // namespace

ModuleRecord::ModuleRecord(std::span<const ModuleProperty> properties) : m_properties(properties) {
  m_values.reserve(properties.size());
  for (const ModuleProperty& property : properties) {
    m_values.push_back(property.fallback);
  }
}

ModuleRecord& ModuleRecord::Set(std::string_view key, std::uint64_t value) {
  m_values[Place(key)] = value;
  return *this;
}

ModuleRecord& ModuleRecord::Follow(const Members& keys, std::string_view key, std::uint64_t value) {
  return keys.Has(key) ? *this : Set(key, value);
}

void ModuleRecord::Read(Members& keys) {
  std::string_view lastPart;
  for (const ModuleProperty& property : m_properties) {
    const std::string_view part = Split(property.key).first;
    if (part != lastPart && !part.empty()) {
      ReadMembers(keys[part], [&](Members& members) { ReadPart(part, members); });
    }
    lastPart = part;
  }
  ReadPart({}, keys);
}

void ModuleRecord::ReadPart(std::string_view part, Members& keys) {
  for (std::size_t place = 0; place < m_properties.size(); ++place) {
    const auto [ownPart, key] = Split(m_properties[place].key);
    if (ownPart != part) {
      continue;
    }
    const Node value = keys[key];
    if (!value.IsAbsent() && !m_properties[place].name.empty()) {
      m_values[place] = ReadValue(value, m_properties[place]);
    }
  }
}

void ModuleRecord::Fill(CimObject& object) const {
  std::size_t position = 0;
  for (std::size_t place = 0; place < m_properties.size(); ++place) {
    if (!m_properties[place].name.empty()) {
      object.Force(position++, m_values[place], m_properties[place].type);
    }
  }
}

std::vector<PropertyDefinition> ModuleRecord::Definitions(std::span<const ModuleProperty> properties) {
  std::vector<PropertyDefinition> definitions;
  for (const ModuleProperty& property : properties) {
    if (!property.name.empty()) {
      definitions.push_back(Property(property.name, property.type));
    }
  }
  return definitions;
}

void ModuleRecord::PassOver(std::span<const ModuleProperty> properties, Members& keys) {
  for (const ModuleProperty& property : properties) {
    const auto [part, key] = Split(property.key);
    keys[part.empty() ? key : part];
  }
}

std::size_t ModuleRecord::Place(std::string_view key) const {
  for (std::size_t place = 0; place < m_properties.size(); ++place) {
    if (m_properties[place].key == key) {
      return place;
    }
  }
  throw std::logic_error("no key " + std::string(key));
}

} // namespace simhost
