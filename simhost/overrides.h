#pragma once

#include "simhost/cim.h"
#include "simhost/description.h"
#include "simhost/faults.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Described overrides: properties of handed-out objects replaced by what a broken driver would send.

namespace simhost {

class OverrideRules {
public:
  OverrideRules() = default;
  /// Reads "overrides": an array of rules.
  explicit OverrideRules(const Node& overrides);

  /// Applies the rules for the object's class to it; `index` is its position in its enumeration or list.
  void Apply(CimObject& object, std::size_t index);

  bool IsEmpty() const { return m_rules.empty(); }

private:
  struct Rule {
    std::wstring className;
    std::wstring property;
    Occurrence occurrence;
    std::optional<std::size_t> index;
    std::function<void(CimObject&, std::size_t)> change; ///< of the object's property at that position
    std::uint64_t count = 0;
  };
  std::vector<Rule> m_rules;
};

/// The CIM type of a name like "uint32", "string", "object", "uint8[]".
CIMTYPE ReadCimType(const Node& type);
/// A value of that type from JSON (no objects).
CimValue ReadCimValue(const Node& value, CIMTYPE type);

} // namespace simhost
