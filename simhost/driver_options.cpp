#include "simhost/driver_options.h"

#include "simhost/text.h"

#include <algorithm>
#include <utility>

namespace simhost {
namespace {

constexpr std::uint32_t kBytesPerDetail = 72;
constexpr std::size_t kPaddedKeyword = 41;

enum RequestType : std::uint64_t { kRead = 0, kApply = 1 };

/// What the DSM says of an option that was to be set.
enum Verdict : std::uint32_t {
  kVariable = 0,
  kAction = 1,
  kOutOfRange = 2,
  kInvalid = 3,
  kUnknown = 4,
  kInTransition = 8
};

constexpr wchar_t kRequestClass[] = L"VRXDSM_OPTION_REQUEST";
constexpr wchar_t kDetailClass[] = L"VRXDSM_OPTION_DETAIL";

void AddNumbers(CimClass& definition, std::initializer_list<const wchar_t*> names) {
  for (const wchar_t* name : names) {
    definition.properties.push_back(Property(name, CIM_UINT32));
  }
}

std::wstring_view WithoutPadding(std::wstring_view keyword) {
  const std::size_t last = keyword.find_last_not_of(L' ');
  return keyword.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
}

std::uint32_t NumberOf(const CimObject& object, std::wstring_view name) {
  return static_cast<std::uint32_t>(object.Value(name).Number());
}

} // namespace

DriverOptions::DriverOptions(Host& host, OptionsModel model, std::string stateKey, PathQuestion askPath)
    : m_host(host), m_model(std::move(model)), m_stateKey(std::move(stateKey)), m_askPath(std::move(askPath)) {}

void DriverOptions::AddClasses(Repository& repository) {
  CimClass detail;
  detail.name = kDetailClass;
  AddNumbers(detail, {L"Version", L"Status"});
  detail.properties.push_back(Property(L"Keyword", CIM_STRING));
  AddNumbers(detail, {L"Value", L"DefaultValue", L"MinimumValue", L"MaximumValue", L"Pad"});
  repository.AddClass(std::move(detail));
  CimClass request;
  request.name = kRequestClass;
  AddNumbers(request, {L"Version", L"Magic", L"RequestType", L"BufferSize", L"BytesTransferred", L"TotalBytesNeeded",
                       L"Pad", L"NumOptionDetails"});
  request.properties.push_back(EmbeddedArray(L"OptionDetailList", kDetailClass));
  repository.AddClass(std::move(request));
}

HRESULT DriverOptions::Control(const MethodCall& call, CimObject* output) {
  const CimObject* request = call.Input(L"InputParams").IfObject();
  if (request == nullptr || request->Value(L"RequestType").IsNull()) {
    return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
  }
  CimObject answer(m_host.repository.RequireClass(kRequestClass));
  for (const wchar_t* name : {L"Version", L"Magic", L"RequestType", L"BufferSize", L"Pad"}) {
    answer.Set(name, NumberOf(*request, name));
  }
  const std::uint64_t type = request->Value(L"RequestType").Number();
  HRESULT result = static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
  if (type == kRead) {
    result = Read(NumberOf(*request, L"BufferSize"), answer);
  } else if (type == kApply) {
    result = Apply(*request, answer);
  }
  output->Set(L"OutputParams", CimValue::Embed(std::move(answer)));
  return result;
}

HRESULT DriverOptions::Read(std::uint32_t bufferSize, CimObject& answer) {
  const auto needed = static_cast<std::uint32_t>(kBytesPerDetail * m_model.options.size());
  const std::size_t read = m_reads++;
  std::vector<CimObject> details;
  std::uint32_t stillNeeded = 0;
  if (read < m_model.bytesNeeded.size()) {
    stillNeeded = m_model.bytesNeeded[read];
  } else if (bufferSize < needed && !m_model.ignoresRoom) {
    stillNeeded = needed;
  }
  if (stillNeeded == 0) {
    for (const OptionModel& option : m_model.options) {
      details.push_back(Listed(option));
    }
  }
  const auto count = static_cast<std::uint32_t>(details.size());
  answer.Set(L"BytesTransferred", kBytesPerDetail * count);
  answer.Set(L"TotalBytesNeeded", stillNeeded);
  answer.Set(L"NumOptionDetails", count);
  answer.Set(L"OptionDetailList", CimValue::Embed(std::move(details)));
  return S_OK;
}

HRESULT DriverOptions::Apply(const CimObject& request, CimObject& answer) {
  const std::vector<CimValue>* list = request.Value(L"OptionDetailList").IfArray();
  if (list == nullptr) {
    return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
  }
  std::vector<CimObject> details;
  m_host.state.Update([&](StateChange& change) {
    details.clear();
    for (const CimValue& element : *list) {
      if (const CimObject* detail = element.IfObject()) {
        details.push_back(ApplyDetail(*detail, change));
      }
    }
  });
  const auto count = static_cast<std::uint32_t>(details.size());
  answer.Set(L"BytesTransferred", kBytesPerDetail * count);
  answer.Set(L"TotalBytesNeeded", 0U);
  answer.Set(L"NumOptionDetails", count);
  answer.Set(L"OptionDetailList", CimValue::Embed(std::move(details)));
  return S_OK;
}

CimObject DriverOptions::ApplyDetail(const CimObject& detail, StateChange& change) const {
  const std::wstring_view keyword = WithoutPadding(detail.Value(L"Keyword").TextOrEmpty());
  const std::uint32_t value = NumberOf(detail, L"Value");
  const bool isAction = NumberOf(detail, L"Status") != kVariable;
  const auto option = std::ranges::find(m_model.options, keyword, &OptionModel::keyword);
  const bool isKnown = option != m_model.options.end();
  std::uint32_t verdict = kUnknown;
  if (isKnown && option->verdict) {
    verdict = *option->verdict;
  } else if (isKnown) {
    verdict = option->isAction != isAction ? std::uint32_t{kInvalid} : ActOn(*option, value, change);
  }
  CimObject answer(m_host.repository.RequireClass(kDetailClass));
  answer.Set(L"Version", 0U).Set(L"Pad", 0U);
  answer.Set(L"Status", verdict).Set(L"Keyword", Answered(keyword)).Set(L"Value", value);
  answer.Set(L"DefaultValue", isKnown ? option->byDefault : 0U);
  answer.Set(L"MinimumValue", isKnown ? option->minimum : 0U);
  answer.Set(L"MaximumValue", isKnown ? option->maximum : 0U);
  return answer;
}

std::uint32_t DriverOptions::ActOn(const OptionModel& option, std::uint32_t value, StateChange& change) const {
  if (!option.isAction) {
    if (value < option.minimum || value > option.maximum) {
      return kOutOfRange;
    }
    change.Set(OptionKey(option.keyword), Json(value));
    return kVariable;
  }
  const bool takesOffline = option.keyword == L"SetPathOffline";
  if (takesOffline || option.keyword == L"SetPathOnline") {
    switch (m_askPath(value)) {
    case PathCondition::kUnknown:
      return kInvalid;
    case PathCondition::kInTransition:
      return kInTransition;
    case PathCondition::kReady:
      change.Set(PathKey(value), Json(takesOffline));
      change.Set(m_stateKey + "pathsWereSet", Json(true));
      break;
    }
  }
  return kAction;
}

CimObject DriverOptions::Listed(const OptionModel& option) const {
  CimObject detail(m_host.repository.RequireClass(kDetailClass));
  detail.Set(L"Version", 0U).Set(L"Pad", 0U);
  detail.Set(L"Status", option.isAction ? std::uint32_t{kAction} : std::uint32_t{kVariable});
  detail.Set(L"Keyword", Answered(option.keyword)).Set(L"Value", CurrentValue(option));
  detail.Set(L"DefaultValue", option.byDefault);
  detail.Set(L"MinimumValue", option.minimum).Set(L"MaximumValue", option.maximum);
  return detail;
}

std::uint32_t DriverOptions::CurrentValue(const OptionModel& option) const {
  return static_cast<std::uint32_t>(m_host.state.Number(OptionKey(option.keyword), option.value));
}

std::wstring DriverOptions::Answered(std::wstring_view keyword) const {
  std::wstring answered(keyword);
  if (m_model.padsKeywords && answered.size() < kPaddedKeyword) {
    answered.resize(kPaddedKeyword, L' ');
  }
  return answered;
}

bool DriverOptions::ChangesLuns() const {
  return m_host.state.Flag(m_stateKey + "pathsWereSet", false) || Policy();
}

std::optional<std::uint32_t> DriverOptions::Policy() const {
  const std::optional<Json> policy = m_host.state.Find(OptionKey(L"LoadBalancePolicy"));
  if (!policy || policy->IfUnsigned() == nullptr) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(*policy->IfUnsigned());
}

bool DriverOptions::IsOffline(std::uint32_t pathId) const {
  return m_host.state.Flag(PathKey(pathId), false);
}

std::string DriverOptions::OptionKey(std::wstring_view keyword) const {
  return m_stateKey + "options/" + Utf8FromWide(std::wstring(keyword));
}

std::string DriverOptions::PathKey(std::uint32_t pathId) const {
  return m_stateKey + "paths/" + std::to_string(pathId) + "/offline";
}

} // namespace simhost
