#pragma once

#include "simhost/description.h"

#include <cstdint>
#include <memory>
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
  std::optional<std::uint32_t> code;  ///< the operation gives this instead of being carried out
  bool nothing = false;               ///< it succeeds but hands out nothing
  std::optional<std::uint32_t> count; ///< a transfer ends after so many bytes, before the code comes
  std::uint32_t delay = 0;            ///< milliseconds, waited out before anything else
};

class FaultRules {
public:
  FaultRules() = default;
  /// Reads "faults": an array of rules.
  explicit FaultRules(const Node& faults);

  /// Counts the call for every rule that matches it and gives what comes of it: of the rules that apply the first
  /// decides code, nothing and count, the delays add up. `operation` is a position in kOperations. A rule's target is
  /// the object (a class or a method), its member (a property or a method) or both as "object.member", without regard
  /// to case; a rule without a target matches any call of its operation.
  Fault Take(std::size_t operation, std::wstring_view object, std::wstring_view member = {});

  /// The same for an operation of the platform: a rule's target is the whole target or what stands behind its last
  /// slash or backslash.
  Fault TakePlatform(std::string_view operation, std::string_view target);

  bool IsEmpty() const { return m_rules.empty(); }

private:
  struct Rule {
    std::size_t operation = 0;
    std::optional<std::wstring> target;
    Occurrence occurrence;
    Fault fault;
    std::uint64_t count = 0;
  };
  static Rule ReadRule(const Node& fault);
  template <class Matches>
  Fault TakeMatching(std::size_t operation, Matches matches);

  std::unique_ptr<std::mutex> m_lock = std::make_unique<std::mutex>();
  std::vector<Rule> m_rules;
};

} // namespace simhost
