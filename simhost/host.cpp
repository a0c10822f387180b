#include "simhost/host.h"

namespace simhost {

namespace {

constexpr std::size_t kMostNameUnits = 1024;
constexpr std::wstring_view kDefaultName = L"host";
constexpr std::wstring_view kDefaultDomain = L"example.com";

/// A form of the machine's name; null makes the question for it fail.
std::optional<std::wstring> ReadName(const Node& name, std::wstring_view fallback) {
  return name.IsNull() ? std::nullopt : std::optional(name.Text(kMostNameUnits, fallback));
}

void ReadComputer(const Node& computer, Host& host) {
  ReadMembers(computer, [&](Members& members) {
    host.computer.name = ReadName(members["name"], kDefaultName);
    host.computer.domain = ReadName(members["domain"], kDefaultDomain);
  });
}

void ReadDeviceTree(const Node& deviceTree, Host& host) {
  constexpr CodeName kRoots[] = {{"missing", 0}, {"present", 1}};
  ReadMembers(deviceTree, [&](Members& members) { host.deviceTreeRoot = members["root"].Word<bool>(kRoots, true); });
}

} // namespace

Host::Host(const std::string& statePath) : state(statePath) {
  CimClass system;
  system.name = L"__SystemClass";
  repository.AddClass(std::move(system));
  CimClass parameters;
  parameters.name = L"__PARAMETERS";
  repository.AddClass(std::move(parameters));
  CimClass nameSpace;
  nameSpace.name = L"__NAMESPACE";
  nameSpace.superclass = L"__SystemClass";
  nameSpace.properties = {Key(L"Name")};
  repository.AddClass(std::move(nameSpace));
}

std::unique_ptr<Host> ReadHost(std::string_view description, const std::string& statePath) {
  const Json document = ParseJson(description);
  auto host = std::make_unique<Host>(statePath);
  ReadMembers(Node(document, {}), [&](Members& members) {
    ReadComputer(members["computer"], *host);
    host->clock = ReadClock(members["clock"]);
    ReadDeviceTree(members["deviceTree"], *host);
    host->faults = FaultRules(members["faults"]);
    for (const HostSection& section : HostSections()) {
      section.build(members[section.key], *host);
    }
    host->overrides = OverrideRules(members["overrides"], host->repository);
  });
  host->registry.Start();
  host->repository.SetRefresh([&state = host->state] { state.Refresh(); });
  if (!host->overrides.IsEmpty()) {
    host->repository.SetOverride(
        [&overrides = host->overrides](CimObject& object, std::size_t index) { overrides.Apply(object, index); });
  }
  return host;
}

std::unique_ptr<Host> MakeBareHost(std::wstring computerName) {
  auto host = std::make_unique<Host>(std::string());
  host->computer = {std::move(computerName), std::wstring()};
  host->clock = MakeRealClock();
  host->registry.Start();
  return host;
}

} // namespace simhost
