#include "fuzz/input.h"
#include "fuzz/whole_run.h"
#include "simhost/host.h"
#include "simhost/operations.h"
#include "simhost/text.h"

#include <array>
#include <stdexcept>

// Whole runs on the ready-made hosts, whose drivers and whose system give other answers than they should.

namespace {

using fuzzing::Input;
using simhost::Json;

/// A property that hosts hand out, named as a rule names it.
struct Target {
  Json::Object names;
  bool isOfClass;
  bool isBytes;
  bool isLimit; ///< announces how many of something the driver has
};

std::vector<Target> TargetsOf(const simhost::Host& host) {
  std::vector<Target> targets;
  const auto add = [&](const char* kind, const std::wstring& name, const simhost::PropertyDefinition& property) {
    targets.push_back({{{kind, simhost::Utf8FromWide(name)}, {"property", simhost::Utf8FromWide(property.name)}},
                       std::string_view(kind) == "class",
                       property.type == (CIM_UINT8 | CIM_FLAG_ARRAY),
                       property.name.starts_with(L"Max")});
  };
  for (const simhost::ClassRef& definition : host.repository.Classes()) {
    for (const simhost::PropertyDefinition& property : definition->properties) {
      add("class", definition->name, property);
    }
    for (const simhost::MethodDefinition& method : definition->methods) {
      for (const simhost::PropertyDefinition& output : method.outputs) {
        add("method", method.name, output);
      }
    }
  }
  return targets;
}

/// A host, and all that its rules can be about.
struct Scene {
  Json description;
  std::vector<Target> targets;
};

const std::vector<Scene>& Scenes() {
  static const std::vector<Scene> scenes = [] {
    std::vector<Scene> made;
    for (const Json& host : fuzzing::ReadyMadeHosts()) {
      made.push_back({host, TargetsOf(*simhost::ReadHost(host.Write(), ""))});
    }
    return made;
  }();
  return scenes;
}

Json HexText(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 0xF];
  }
  return text;
}

/// Numbers at which something may end. A limit that is neither small nor refused would only take long.
std::uint64_t Edge(Input& input, const Target& target) {
  static constexpr std::uint64_t kEdges[] = {0, 1, 2, 31, 32, 33, 255, 256, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  if (input.Choice(2) == 0) {
    return input.OneOf(kEdges);
  }
  return target.isLimit ? input.Choice(600) : input.Number(4);
}

/// UTF-16 units, lone surrogates and zeros among them.
Json Units(Input& input) {
  Json::Array units;
  for (const char unit : input.Text(80)) {
    units.emplace_back(static_cast<std::uint64_t>(static_cast<unsigned char>(unit)) * (unit < 0 ? 0xD9 : 1));
  }
  return Json::Object{{"units", std::move(units)}};
}

void AddChange(Input& input, const Target& target, Json::Object& rule) {
  switch (input.Choice(8)) {
  case 0:
    rule.emplace_back("null", true);
    return;
  case 1:
    rule.emplace_back("missing", true);
    return;
  case 2:
    rule.emplace_back("length", input.Choice(target.isBytes ? 20000 : 300));
    return;
  case 3:
    rule.emplace_back("bytes", HexText(input.Text(9000)));
    return;
  case 4:
    rule.emplace_back("type", "string");
    rule.emplace_back("value", Units(input));
    return;
  case 5:
    rule.emplace_back("type", input.Choice(2) == 0 ? "uint64" : "sint64");
    rule.emplace_back("value", input.Number(8) >> 1);
    return;
  case 6: {
    static constexpr std::array<const char*, 6> kTypes = {"object", "object[]",  "string[]",
                                                          "real64", "boolean[]", "datetime"};
    rule.emplace_back("type", kTypes[input.Choice(kTypes.size())]);
    rule.emplace_back("value", Json());
    return;
  }
  default:
    rule.emplace_back("type", "uint32");
    rule.emplace_back("value", Edge(input, target));
    return;
  }
}

void AddOccurrence(Input& input, Json::Object& rule) {
  if (input.Choice(2) == 0) {
    rule.emplace_back("occurrence", 1 + input.Choice(40));
  }
}

Json Override(Input& input, const std::vector<Target>& targets) {
  const Target& target = input.OneOf(targets);
  Json::Object rule = target.names;
  AddOccurrence(input, rule);
  if (target.isOfClass && input.Choice(4) == 0) {
    rule.emplace_back("index", input.Choice(4));
  }
  AddChange(input, target, rule);
  return rule;
}

Json Fault(Input& input) {
  const simhost::OperationName& operation = input.OneOf(simhost::kOperations);
  Json::Object rule = {{"operation", std::string(operation.name)}};
  AddOccurrence(input, rule);
  static constexpr std::uint64_t kCodes[] = {0x80041001, 0x80041003, 0x80070005, 2, 5, 8, 18, 234, 259};
  if (operation.handsOut && input.Choice(3) == 0) {
    rule.emplace_back("give", "nothing");
  } else {
    rule.emplace_back("give", input.OneOf(kCodes));
  }
  return rule;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const Scene& scene = input.OneOf(Scenes());
  const auto& commandLine = input.OneOf(fuzzing::CommandLines());
  Json::Array overrides;
  Json::Array faults;
  for (int rules = 0; rules < 6 && !input.IsAtEnd(); ++rules) {
    if (input.Choice(5) == 0) {
      faults.push_back(Fault(input));
    } else {
      overrides.push_back(Override(input, scene.targets));
    }
  }
  const Json description =
      fuzzing::With(scene.description, {{"overrides", std::move(overrides)}, {"faults", std::move(faults)}});
  try {
    fuzzing::RunOn(simhost::ReadHost(description.Write(), ""), commandLine);
  } catch (const simhost::DescriptionError&) {
    // A rule that the description does not take.
  }
  fuzzing::RemoveFiles();
  return 0;
}
