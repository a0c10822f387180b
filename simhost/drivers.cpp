#include "simhost/driver_classes.h"
#include "simhost/driver_model.h"
#include "simhost/driver_provider.h"
#include "simhost/host_sections.h"
#include "simhost/registry_tree.h"

#include <memory>
#include <utility>

namespace simhost {
namespace {

constexpr std::size_t kMaxDrivers = 256;

/// The key that a DSM's installation leaves.
void AddServiceKey(RegistryNode& root, const std::wstring& service) {
  const std::wstring path = L"SYSTEM\\CurrentControlSet\\Services\\" + service + L"\\Parameters";
  RegistryNode* node = &root;
  for (const std::wstring_view name : PathComponents(path)) {
    node = node->FindOrMake(name).get();
  }
}

} // namespace

void BuildDrivers(const Node& dsms, Host& host) {
  std::size_t index = 0;
  for (const Node& node : dsms.Elements(kMaxDrivers)) {
    DriverModel driver = ReadDriver(node, index++);
    AddServiceKey(host.registry.Described(), driver.serviceKey);
    AddDriverDataClasses(host.repository, driver.generation);
    host.installedDsms.push_back(
        {driver.name,
         driver.context,
         {driver.version.major, driver.version.minor, driver.version.build, driver.version.qfe}});
    if (driver.methodsClass.empty()) {
      continue;
    }
    CimClass methods = DriverMethodsClass(driver);
    const std::shared_ptr<Provider> provider = std::make_shared<DriverProvider>(host, std::move(driver));
    if (!host.repository.AddClass(std::move(methods), provider)) {
      node.Refuse("a DSM whose methods class no other class of the host has");
    }
  }
}

} // namespace simhost
