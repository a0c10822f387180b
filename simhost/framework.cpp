#include "simhost/framework_parts.h"
#include "simhost/host_sections.h"

#include <memory>
#include <utility>
#include <vector>

// The operating system's MPIO framework: what it is made of, and the adapters of its paths.

namespace simhost {
namespace {

struct AdapterModel {
  std::uint64_t pathId = 0;
  std::uint8_t bus = 0;
  std::uint8_t device = 0;
  std::uint8_t function = 0;
  std::wstring name;
};

struct FrameworkModel {
  std::uint32_t announcedPaths = 0;
  std::vector<AdapterModel> adapters;
};

constexpr std::size_t kMaxAdapters = 65536;

AdapterModel ReadAdapter(const Node& adapter) {
  AdapterModel model;
  ReadMembers(adapter, [&model](Members& keys) {
    model.pathId = keys["pathId"].Unsigned<std::uint64_t>(0, UINT64_MAX, 0);
    model.bus = keys["bus"].Unsigned<std::uint8_t>(0, 255, 0);
    model.device = keys["device"].Unsigned<std::uint8_t>(0, 255, 0);
    model.function = keys["function"].Unsigned<std::uint8_t>(0, 255, 0);
    model.name = keys["adapter"].Text(4096, L"");
  });
  return model;
}

class FrameworkProvider : public Provider {
public:
  FrameworkProvider(Repository& repository, FrameworkModel framework)
      : m_repository(repository), m_framework(std::move(framework)) {}

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
    const ClassRef adapterClass = m_repository.RequireClass(L"MPIO_ADAPTER_INFORMATION");
    std::vector<CimObject> paths;
    for (const AdapterModel& adapter : m_framework.adapters) {
      CimObject path(adapterClass);
      path.Set(L"PathId", adapter.pathId);
      path.Set(L"BusNumber", adapter.bus);
      path.Set(L"DeviceNumber", adapter.device);
      path.Set(L"FunctionNumber", adapter.function);
      path.Set(L"Pad", std::uint8_t{0});
      path.Set(L"AdapterName", adapter.name);
      paths.push_back(std::move(path));
    }
    CimObject instance(definition);
    instance.Set(L"InstanceName", kFrameworkInstance);
    instance.Set(L"Active", true);
    instance.Set(L"NumberPaths", m_framework.announcedPaths);
    instance.Set(L"Pad", 0U);
    instance.Set(L"PathList", CimValue::Embed(std::move(paths)));
    instances.push_back(std::move(instance));
    return {};
  }

private:
  Repository& m_repository;
  FrameworkModel m_framework;
};

void AddPathClasses(Repository& repository, FrameworkModel framework) {
  CimClass adapter;
  adapter.name = L"MPIO_ADAPTER_INFORMATION";
  adapter.properties = {Property(L"PathId", CIM_UINT64),      Property(L"BusNumber", CIM_UINT8),
                        Property(L"DeviceNumber", CIM_UINT8), Property(L"FunctionNumber", CIM_UINT8),
                        Property(L"Pad", CIM_UINT8),          Property(L"AdapterName", CIM_STRING)};
  repository.AddClass(std::move(adapter));

  CimClass paths;
  paths.name = L"MPIO_PATH_INFORMATION";
  paths.properties = {Key(L"InstanceName"), Property(L"Active", CIM_BOOLEAN), Property(L"NumberPaths", CIM_UINT32),
                      Property(L"Pad", CIM_UINT32), EmbeddedArray(L"PathList", L"MPIO_ADAPTER_INFORMATION")};
  repository.AddClass(std::move(paths), std::make_shared<FrameworkProvider>(repository, std::move(framework)));
}

} // namespace

void BuildFramework(const Node& mpio, Host& host) {
  if (mpio.IsAbsent() || mpio.IsNull()) {
    return;
  }
  FrameworkModel framework;
  ReadMembers(mpio, [&](Members& keys) {
    AddRegisteredDsms(keys["dsms"], host);
    AddFrameworkDrives(keys["drives"], host);
    for (const Node& adapter : keys["paths"].Elements(kMaxAdapters)) {
      framework.adapters.push_back(ReadAdapter(adapter));
    }
    framework.announcedPaths = keys["announcedPaths"].Unsigned<std::uint32_t>(
        0, 0xFFFFFFFF, static_cast<std::uint32_t>(framework.adapters.size()));
  });
  AddPathClasses(host.repository, std::move(framework));
}

} // namespace simhost
