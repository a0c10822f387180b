#include "simhost/framework_parts.h"
#include "simhost/text.h"

#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace simhost {
namespace {

constexpr std::size_t kMaxDsms = 256;
constexpr std::size_t kMaxName = 4096;
constexpr std::uint64_t kMax32 = 0xFFFFFFFF;

/// A timing counter: its property, its key in descriptions, what a fresh framework has, and its width.
struct Counter {
  const wchar_t* property;
  std::string_view key;
  std::uint32_t byDefault;
  CIMTYPE type = CIM_UINT32;
};
constexpr Counter kCounters[] = {
    {L"PathVerifyEnabled", "pathVerifyEnabled", 0}, {L"PathVerificationPeriod", "pathVerificationPeriod", 30},
    {L"PDORemovePeriod", "pdoRemovePeriod", 20},    {L"RetryCount", "retryCount", 3},
    {L"RetryInterval", "retryInterval", 1},         {L"Reserved32", "reserved32", 0},
    {L"Reserved64", "reserved64", 0, CIM_UINT64}};

struct KnownDsm {
  InstalledDsm dsm;
  std::uint64_t counters[std::size(kCounters)] = {};
};

KnownDsm ReadKnownDsm(const Node& known, const InstalledDsm& installed) {
  KnownDsm model{installed, {}};
  ReadMembers(known, [&model](Members& keys) {
    model.dsm.name = keys["name"].Text(kMaxName, model.dsm.name);
    model.dsm.context = keys["context"].Unsigned<std::uint64_t>(0, UINT64_MAX, model.dsm.context);
    for (std::size_t i = 0; i < std::size(kCounters); ++i) {
      const std::uint64_t most = kCounters[i].type == CIM_UINT64 ? UINT64_MAX : kMax32;
      model.counters[i] = keys[kCounters[i].key].Unsigned<std::uint64_t>(0, most, kCounters[i].byDefault);
    }
  });
  return model;
}

std::vector<KnownDsm> ReadKnownDsms(const Node& dsms, const std::vector<InstalledDsm>& installed) {
  std::vector<KnownDsm> known;
  if (dsms.IsAbsent()) {
    for (const InstalledDsm& dsm : installed) {
      known.push_back(ReadKnownDsm(Node(dsms.Path()), dsm));
    }
    return known;
  }
  for (const Node& dsm : dsms.Elements(kMaxDsms)) {
    known.push_back(ReadKnownDsm(dsm, known.size() < installed.size() ? installed[known.size()] : InstalledDsm{}));
  }
  return known;
}

std::string CounterKey(std::uint64_t context, const Counter& counter) {
  return "mpio/dsms/" + std::to_string(context) + "/" + std::string(counter.key);
}

/// MPIO_REGISTERED_DSM: the known DSMs with the counters as they are now.
class RegisteredDsmProvider : public Provider {
public:
  RegisteredDsmProvider(Host& host, std::vector<KnownDsm> known) : m_host(host), m_known(std::move(known)) {}

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    std::vector<CimObject> parameters;
    for (const KnownDsm& known : m_known) {
      parameters.push_back(Parameters(known));
    }
    CimObject instance(definition);
    instance.Set(L"InstanceName", kFrameworkInstance).Set(L"Active", true);
    instance.Set(L"NumberDSMs", static_cast<std::uint32_t>(parameters.size()));
    instance.Set(L"DsmParameters", CimValue::Embed(std::move(parameters)));
    instances.push_back(std::move(instance));
    return {};
  }

private:
  CimObject Parameters(const KnownDsm& known) const {
    static constexpr const wchar_t* kVersionFields[] = {L"MajorVersion", L"MinorVersion", L"ProductBuild",
                                                        L"QfeNumber"};
    CimObject version(m_host.repository.RequireClass(L"DSM_VERSION"));
    for (std::size_t i = 0; i < std::size(kVersionFields); ++i) {
      version.Set(kVersionFields[i], known.dsm.version[i]);
    }
    CimObject counters(m_host.repository.RequireClass(L"DSM_COUNTERS"));
    for (std::size_t i = 0; i < std::size(kCounters); ++i) {
      const std::string key = CounterKey(known.dsm.context, kCounters[i]);
      const std::uint64_t value = m_host.state.Number(key, known.counters[i]);
      if (kCounters[i].type == CIM_UINT64) {
        counters.Set(kCounters[i].property, value);
      } else {
        counters.Set(kCounters[i].property, static_cast<std::uint32_t>(value));
      }
    }
    CimObject parameters(m_host.repository.RequireClass(L"DSM_PARAMETERS"));
    parameters.Set(L"DsmName", known.dsm.name).Set(L"DsmContext", known.dsm.context);
    parameters.Set(L"DsmVersion", CimValue::Embed(std::move(version)));
    parameters.Set(L"DsmCounters", CimValue::Embed(std::move(counters)));
    return parameters;
  }

  Host& m_host;
  std::vector<KnownDsm> m_known;
};

/// MPIO_WMI_METHODS: sets the counters of a known DSM.
class FrameworkMethods : public Provider {
public:
  FrameworkMethods(Host& host, std::vector<KnownDsm> known) : m_host(host), m_known(std::move(known)) {}

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    instances.emplace_back(definition).Set(L"InstanceName", kFrameworkInstance).Set(L"Active", true);
    return {};
  }

  Outcome ExecuteMethod(const MethodCall& call, CimObject* /*output*/) override {
    const CimObject* counters = call.Input(L"DsmCounters").IfObject();
    const CimValue& context = call.Input(L"DsmContext");
    if (counters == nullptr || context.IsNull() || !IsKnown(context.Number())) {
      return {static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER)};
    }
    m_host.state.Update([&](StateChange& change) {
      for (const Counter& counter : kCounters) {
        const CimValue& value = counters->Value(counter.property);
        if (!value.IsNull()) {
          change.Set(CounterKey(context.Number(), counter), Json(value.Number()));
        }
      }
    });
    return {};
  }

private:
  bool IsKnown(std::uint64_t context) const {
    for (const KnownDsm& known : m_known) {
      if (known.dsm.context == context) {
        return true;
      }
    }
    return false;
  }

  Host& m_host;
  std::vector<KnownDsm> m_known;
};

void AddEmbeddedClasses(Repository& repository) {
  CimClass version;
  version.name = L"DSM_VERSION";
  version.properties = {Property(L"MajorVersion", CIM_UINT32), Property(L"MinorVersion", CIM_UINT32),
                        Property(L"ProductBuild", CIM_UINT32), Property(L"QfeNumber", CIM_UINT32)};
  repository.AddClass(std::move(version));
  CimClass counters;
  counters.name = L"DSM_COUNTERS";
  for (const Counter& counter : kCounters) {
    counters.properties.push_back(Property(counter.property, counter.type));
  }
  repository.AddClass(std::move(counters));
  CimClass parameters;
  parameters.name = L"DSM_PARAMETERS";
  parameters.properties = {Property(L"DsmName", CIM_STRING), Property(L"DsmContext", CIM_UINT64),
                           Embedded(L"DsmVersion", L"DSM_VERSION"), Embedded(L"DsmCounters", L"DSM_COUNTERS")};
  repository.AddClass(std::move(parameters));
}

} // namespace

void AddRegisteredDsms(const Node& dsms, Host& host) {
  const std::vector<KnownDsm> known = ReadKnownDsms(dsms, host.installedDsms);
  AddEmbeddedClasses(host.repository);
  CimClass registered;
  registered.name = L"MPIO_REGISTERED_DSM";
  registered.properties = {Key(L"InstanceName"), Property(L"Active", CIM_BOOLEAN), Property(L"NumberDSMs", CIM_UINT32),
                           EmbeddedArray(L"DsmParameters", L"DSM_PARAMETERS")};
  host.repository.AddClass(std::move(registered), std::make_shared<RegisteredDsmProvider>(host, known));
  CimClass methods;
  methods.name = L"MPIO_WMI_METHODS";
  methods.properties = {Key(L"InstanceName"), Property(L"Active", CIM_BOOLEAN)};
  methods.methods = {
      {L"SetDSMCounters", {Property(L"DsmContext", CIM_UINT64), Embedded(L"DsmCounters", L"DSM_COUNTERS")}, {}}};
  host.repository.AddClass(std::move(methods), std::make_shared<FrameworkMethods>(host, known));
}

} // namespace simhost
