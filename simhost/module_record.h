#pragma once

#include "simhost/cim.h"
#include "simhost/description.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// The numbers that an object of interface generation 1 tells: read from the description and written into answers by one
// table for each kind of object.

namespace simhost {

/// A property of a generation-1 object and the key that describes it.
struct ModuleProperty {
  std::wstring_view name; ///< empty for a key of the other interface generation, which is passed over
  std::string_view key;   ///< "part.key" for a key of an object of its own
  CIMTYPE type = CIM_UINT32;
  std::span<const CodeName> words{}; ///< names of its codes
  bool flag = false;                 ///< takes true and false, too
  std::uint64_t fallback = 0;
  std::uint64_t (*read)(const Node&) = nullptr; ///< reads what is written in a way of its own
};

/// The numbers of one object, at first what the table says. Keys that the table does not have must not be asked for.
class ModuleRecord {
public:
  /// `properties` must outlive the record.
  explicit ModuleRecord(std::span<const ModuleProperty> properties);

  std::uint64_t operator[](std::string_view key) const { return m_values[Place(key)]; }
  ModuleRecord& Set(std::string_view key, std::uint64_t value);
  /// Sets what the description does not give.
  ModuleRecord& Follow(const Members& keys, std::string_view key, std::uint64_t value);

  /// Takes over what the description gives; the rest stays. Throws DescriptionError.
  void Read(Members& keys);

  /// Writes the values into an object whose class begins with Definitions() of the same table.
  void Fill(CimObject& object) const;

  static std::vector<PropertyDefinition> Definitions(std::span<const ModuleProperty> properties);
  /// Makes the table's keys known to a description of the other interface generation.
  static void PassOver(std::span<const ModuleProperty> properties, Members& keys);

private:
  std::size_t Place(std::string_view key) const;
  void ReadPart(std::string_view part, Members& keys);

  std::span<const ModuleProperty> m_properties;
  std::vector<std::uint64_t> m_values;
};

} // namespace simhost
