#include "simhost/option_model.h"

namespace simhost {
namespace {

constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
constexpr std::size_t kMaxOptions = 100000;
constexpr std::size_t kMaxKeyword = 100000;
constexpr std::size_t kMaxAnswers = 1000;

constexpr CodeName kKinds[] = {{"variable", 0}, {"action", 1}};
constexpr CodeName kVerdicts[] = {{"accepted", 0},       {"out of range", 2}, {"invalid parameter", 3},
                                  {"unknown option", 4}, {"unknown", 5},      {"in transition", 8}};

OptionModel ReadOption(const Node& option) {
  OptionModel model;
  ReadMembers(option, [&model](Members& keys) {
    model.keyword = keys["keyword"].Text(kMaxKeyword);
    model.isAction = keys["kind"].Word<std::uint32_t>(kKinds, 0) == 1;
    model.minimum = keys["minimum"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.maximum =
        keys["maximum"].Unsigned<std::uint32_t>(0, kMax32, model.isAction ? 0 : static_cast<std::uint32_t>(kMax32));
    model.byDefault = keys["default"].Unsigned<std::uint32_t>(0, kMax32, model.minimum);
    model.value = keys["value"].Unsigned<std::uint32_t>(0, kMax32, model.byDefault);
    const Node verdict = keys["verdict"];
    if (!verdict.IsAbsent()) {
      model.verdict = verdict.Code<std::uint32_t>(kVerdicts, kMax32);
    }
  });
  return model;
}

} // namespace

OptionsModel ReadOptions(const Node& options, const Node& answers) {
  OptionsModel model;
  for (const Node& option : options.Elements(kMaxOptions)) {
    model.options.push_back(ReadOption(option));
  }
  ReadMembers(answers, [&model](Members& keys) {
    model.padsKeywords = keys["padKeywords"].Flag(false);
    model.ignoresRoom = keys["ignoreRoom"].Flag(false);
    for (const Node& bytes : keys["bytesNeeded"].Elements(kMaxAnswers)) {
      model.bytesNeeded.push_back(bytes.Unsigned<std::uint32_t>(0, kMax32));
    }
  });
  return model;
}

} // namespace simhost
