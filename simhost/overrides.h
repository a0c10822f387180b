#pragma once

#include "simhost/cim.h"
#include "simhost/description.h"
#include "simhost/faults.h"
#include "simhost/repository.h"

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
  /// Reads "overrides": an array of rules about classes and methods that the repository has.
  OverrideRules(const Node& overrides, const Repository& repository);

  /// Applies the rules for the object's class to it; `index` is its position in its enumeration or list.
  void Apply(CimObject& object, std::size_t index);

  bool IsEmpty() const { return m_rules.empty(); }

private:
  /// What a rule makes of the property at that position.
  using Change = std::function<void(CimObject&, std::size_t)>;
  struct Rule {
    std::wstring target; ///< a class, or the method whose output it is
    std::wstring property;
    Occurrence occurrence;
    std::optional<std::size_t> index;
    Change change;
    std::uint64_t count = 0;
  };
  static Rule ReadRule(const Node& override, const Repository& repository);
  static Change ReadChange(Members& members);

  std::vector<Rule> m_rules;
};

/// The CIM type of a name like "uint32", "string", "object", "uint8[]".
CIMTYPE ReadCimType(const Node& type);
/// A value of that type from JSON (no objects).
CimValue ReadCimValue(const Node& value, CIMTYPE type);

} // namespace simhost
