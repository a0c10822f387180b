#pragma once

#include "simhost/description.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Described faults: which operation on which target fails how, and when.

namespace simhost {

/// Which of the matching calls a rule concerns, counted from 1: one, a range, or all.
struct Occurrence {
  std::uint64_t from = 1;
  std::uint64_t to = UINT64_MAX;
  bool Covers(std::uint64_t count) const { return count >= from && count <= to; }
};
/// Reads a number, [from, to] or "always"; all when absent.
Occurrence ReadOccurrence(const Node& occurrence);

/// What faults make of one call.
struct Fault {
  std::optional<std::uint32_t> code; ///< the operation gives this instead of being carried out
  bool nothing = false;              ///< it succeeds but hands out nothing
  std::uint32_t delay = 0;           ///< milliseconds, waited out before anything else
};

class FaultRules {
public:
  FaultRules() = default;
  /// Reads "faults": an array of rules.
  explicit FaultRules(const Node& faults);

  /// Counts the call for every rule that matches it and gives what comes of it: the first rule that applies decides
  /// code and nothing, the delays add up. Targets are compared as names; a rule without a target matches any.
  Fault Take(std::string_view operation, std::string_view target);
  Fault Take(std::string_view operation, std::wstring_view target);

  bool IsEmpty() const { return m_rules.empty(); }

private:
  struct Rule {
    std::string operation;
    std::optional<std::string> target;
    Occurrence occurrence;
    Fault fault;
    std::uint64_t count = 0;
  };
  std::mutex m_lock;
  std::vector<Rule> m_rules;
};

} // namespace simhost
