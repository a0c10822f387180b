#include "simhost/host_sections.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

// The class that tells the version of the driver interface. It belongs to the host, not to one of its DSMs.

namespace simhost {
namespace {

struct VersionAnswer {
  CimValue value;
  CIMTYPE type;
};

constexpr std::size_t kMaxVersionLength = 4096;
constexpr std::size_t kMaxAnswers = 1000;
constexpr CIMTYPE kBytes = CIM_UINT8 | CIM_FLAG_ARRAY;

/// A text (also {"units": ...}), null, or {"bytes": ...} for a byte array.
VersionAnswer ReadAnswer(const Node& answer) {
  if (answer.IsNull()) {
    return {CimValue(), CIM_STRING};
  }
  if (answer.Value()->IfObject() == nullptr || answer.Value()->Find("units") != nullptr) {
    return {CimValue(answer.Text(kMaxVersionLength)), CIM_STRING};
  }
  VersionAnswer bytes{CimValue(), kBytes};
  ReadMembers(answer,
              [&bytes](Members& keys) { bytes.value = CimValue::Bytes(keys["bytes"].Bytes(kMaxVersionLength)); });
  return bytes;
}

/// Gives one answer after the other, and the last one for good.
class VersionProvider : public Provider {
public:
  explicit VersionProvider(std::vector<VersionAnswer> answers) : m_answers(std::move(answers)) {}

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    if (m_answers.empty()) {
      return {};
    }
    const VersionAnswer& answer = m_answers[std::min(m_given++, m_answers.size() - 1)];
    CimObject instance(definition);
    instance.Set(L"InstanceName", L"ROOT\\VRXDSM\\0000_0");
    instance.Set(L"Active", true);
    instance.Force(*definition->PropertyIndex(L"MofFileVersion"), answer.value, answer.type);
    instances.push_back(std::move(instance));
    return {};
  }

private:
  std::vector<VersionAnswer> m_answers;
  std::size_t m_given = 0;
};

/// The answers that the description gives; none when the class is to be missing.
std::optional<std::vector<VersionAnswer>> ReadAnswers(const Node& version, const Repository& repository) {
  if (version.IsAbsent()) {
    if (repository.FindClass(L"VRXDSM_INPUT_ARGUMENTS") != nullptr) {
      return std::vector<VersionAnswer>{{CimValue(L"2.0.0"), CIM_STRING}};
    }
    if (repository.FindClass(L"VRXDSM_ARRAY_MODULE") != nullptr) {
      return std::vector<VersionAnswer>{{CimValue(L"1.0.0"), CIM_STRING}};
    }
    return std::nullopt;
  }
  if (version.Value()->IfBoolean() != nullptr) {
    if (version.Flag()) {
      version.Refuse("false for a missing class, a text, null, {\"bytes\": ...} or {\"sequence\": [...]}");
    }
    return std::nullopt;
  }
  if (version.Value()->Find("sequence") == nullptr) {
    return std::vector<VersionAnswer>{ReadAnswer(version)};
  }
  std::vector<VersionAnswer> answers;
  ReadMembers(version, [&answers](Members& keys) {
    for (const Node& answer : keys["sequence"].Elements(kMaxAnswers)) {
      answers.push_back(ReadAnswer(answer));
    }
  });
  return answers;
}

} // namespace

void BuildInterfaceVersion(const Node& version, Host& host) {
  std::optional<std::vector<VersionAnswer>> answers = ReadAnswers(version, host.repository);
  if (!answers) {
    return;
  }
  CimClass definition;
  definition.name = L"VRXDSM_MOF";
  const CIMTYPE type = answers->empty() ? CIMTYPE{CIM_STRING} : answers->front().type;
  definition.properties = {Key(L"InstanceName"), Property(L"Active", CIM_BOOLEAN), Property(L"MofFileVersion", type)};
  host.repository.AddClass(std::move(definition), std::make_shared<VersionProvider>(std::move(*answers)));
}

} // namespace simhost
