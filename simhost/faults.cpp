#include "simhost/faults.h"

#include "simhost/operations.h"
#include "simhost/text.h"

namespace simhost {

namespace {

constexpr std::size_t kMostRules = 10'000;
constexpr std::size_t kMostTargetUnits = 32'767;

std::vector<CodeName> OperationWords() {
  std::vector<CodeName> words;
  for (std::size_t i = 0; i < std::size(kOperations); ++i) {
    words.push_back({kOperations[i].name, i});
  }
  return words;
}

/// Reads what a rule gives: "nothing" where the operation hands something out, a word of its codes or a number.
void ReadGive(const Node& give, const OperationName& operation, Fault& fault) {
  constexpr std::uint64_t kNothing = UINT64_MAX;
  const std::span<const CodeName> codes = CodeWords(operation.family);
  std::vector<CodeName> words(codes.begin(), codes.end());
  if (operation.handsOut) {
    words.push_back({"nothing", kNothing});
  }
  const std::uint64_t code = give.CodeNumber(words, UINT32_MAX);
  if (code == kNothing) {
    fault.nothing = true;
  } else {
    fault.code = static_cast<std::uint32_t>(code);
  }
}

std::wstring_view LastPathPart(std::wstring_view target) {
  const std::size_t slash = target.find_last_of(L"/\\");
  return slash == std::wstring_view::npos ? target : target.substr(slash + 1);
}

bool MatchesObject(std::wstring_view rule, std::wstring_view object, std::wstring_view member) {
  if (EqualNames(rule, object) || (!member.empty() && EqualNames(rule, member))) {
    return true;
  }
  return rule.size() == object.size() + 1 + member.size() && rule[object.size()] == L'.' &&
         EqualNames(rule.substr(0, object.size()), object) && EqualNames(rule.substr(object.size() + 1), member);
}

} // namespace

Occurrence ReadOccurrence(const Node& occurrence) {
  Occurrence read;
  if (occurrence.IsAbsent()) {
    return read;
  }
  const Json& value = *occurrence.Value();
  if (value.IfText() != nullptr && *value.IfText() == "always") {
    return read;
  }
  if (value.IfArray() != nullptr && value.IfArray()->size() == 2) {
    const std::vector<Node> ends = occurrence.Elements(2);
    read.from = ends[0].UnsignedNumber(1, UINT32_MAX);
    read.to = ends[1].UnsignedNumber(read.from, UINT32_MAX);
    return read;
  }
  if (value.IfUnsigned() == nullptr || *value.IfUnsigned() == 0) {
    occurrence.Refuse("a number from 1, [from, to] or \"always\"");
  }
  read.from = read.to = *value.IfUnsigned();
  return read;
}

FaultRules::FaultRules(const Node& faults) {
  for (const Node& fault : faults.Elements(kMostRules)) {
    m_rules.push_back(ReadRule(fault));
  }
}

FaultRules::Rule FaultRules::ReadRule(const Node& fault) {
  Rule rule;
  ReadMembers(fault, [&](Members& members) {
    rule.operation = members["operation"].Word<std::size_t>(OperationWords());
    const Node target = members["target"];
    if (!target.IsAbsent()) {
      rule.target = target.Text(kMostTargetUnits);
    }
    rule.occurrence = ReadOccurrence(members["occurrence"]);
    const Node give = members["give"];
    if (!give.IsAbsent()) {
      ReadGive(give, kOperations[rule.operation], rule.fault);
    }
    rule.fault.delay = members["delay"].Unsigned<std::uint32_t>(0, UINT32_MAX, 0);
    const bool hasCount = kOperations[rule.operation].transfers && members.Has("count");
    if (hasCount) {
      rule.fault.count = members["count"].Unsigned<std::uint32_t>(0, UINT32_MAX, 0);
    }
    if (give.IsAbsent() && !hasCount && !members.Has("delay")) {
      members.Whole().Refuse("\"give\" or \"delay\" in it");
    }
  });
  return rule;
}

template <class Matches>
Fault FaultRules::TakeMatching(std::size_t operation, Matches matches) {
  Fault taken;
  const std::scoped_lock lock(*m_lock);
  for (Rule& rule : m_rules) {
    if (rule.operation != operation || (rule.target && !matches(*rule.target))) {
      continue;
    }
    if (!rule.occurrence.Covers(++rule.count)) {
      continue;
    }
    taken.delay += rule.fault.delay;
    if (!taken.code && !taken.nothing && !taken.count) {
      taken.code = rule.fault.code;
      taken.nothing = rule.fault.nothing;
      taken.count = rule.fault.count;
    }
  }
  return taken;
}

Fault FaultRules::Take(std::size_t operation, std::wstring_view object, std::wstring_view member) {
  if (IsEmpty()) {
    return {};
  }
  return TakeMatching(operation, [&](std::wstring_view rule) { return MatchesObject(rule, object, member); });
}

Fault FaultRules::TakePlatform(std::string_view operation, std::string_view target) {
  if (IsEmpty()) {
    return {};
  }
  const std::wstring wide = WideFromUtf8(target);
  return TakeMatching(OperationIndex(operation), [&](std::wstring_view rule) {
    return EqualNames(rule, wide) || EqualNames(rule, LastPathPart(wide));
  });
}

} // namespace simhost
