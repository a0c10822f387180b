#include "simhost/driver_provider.h"

#include "simhost/array_records.h"
#include "simhost/module_answers.h"
#include "simhost/module_changes.h"
#include "simhost/module_status.h"
#include "simhost/text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace simhost {
namespace {

/// How a call selects arrays.
enum SelectionType : std::uint64_t { kAll = 0, kById = 1, kByWwn = 2 };

/// One element of a list: a record with its size.
CimObject Element(const ClassRef& elementClass, const RecordModel& model, std::vector<std::uint8_t> record) {
  CimObject element(elementClass);
  element.Set(L"Size", model.size.value_or(static_cast<std::uint32_t>(record.size())));
  element.Set(L"Version", 1U);
  element.Set(L"Buffer", CimValue::Bytes(std::move(record)));
  return element;
}

std::size_t CountLuns(const DriverModel& driver) {
  return std::accumulate(driver.arrays.begin(), driver.arrays.end(), std::size_t{0},
                         [](std::size_t sum, const ArrayModel& array) { return sum + array.luns.size(); });
}

std::size_t CountControllers(const DriverModel& driver) {
  return std::accumulate(driver.arrays.begin(), driver.arrays.end(), std::size_t{0},
                         [](std::size_t sum, const ArrayModel& array) { return sum + array.controllers.size(); });
}

std::size_t CountPaths(const DriverModel& driver) {
  std::size_t paths = 0;
  for (const ArrayModel& array : driver.arrays) {
    for (const ControllerModel& controller : array.controllers) {
      paths += controller.paths.size();
    }
  }
  return paths;
}

/// The number that a method without input answers.
std::uint64_t NumberFor(std::wstring_view output, const DriverModel& driver) {
  const std::pair<std::wstring_view, std::uint64_t> numbers[] = {
      {L"NumberOfArrays", driver.announcedArrays},
      {L"NumberOfLuns", CountLuns(driver)},
      {L"NumberOfControllers", CountControllers(driver)},
      {L"NumberOfPaths", CountPaths(driver)},
      {L"MaxModules", driver.maxModules},
      {L"MaxPaths", driver.maxPaths},
      {L"MaxLuns", driver.maxLuns},
      {L"MofFileVersion", static_cast<std::uint64_t>(driver.generation)},
  };
  for (const auto& [name, number] : numbers) {
    if (name == output) {
      return number;
    }
  }
  return 0;
}

/// A WWN as the selection carries it: each character is one byte of the record.
std::wstring WideWwn(const std::string& wwn) {
  std::wstring wide;
  for (const char character : wwn) {
    wide.push_back(static_cast<unsigned char>(character));
  }
  return wide;
}

} // namespace

const DriverProvider::MethodRow DriverProvider::kMethods[] = {
    {L"VrxGetMaxModulesSupported", &DriverProvider::GiveNumber},
    {L"VrxGetMaxPathsSupported", &DriverProvider::GiveNumber},
    {L"VrxGetMaxLunsSupported", &DriverProvider::GiveNumber},
    {L"VrxGetMofFileVersion", &DriverProvider::GiveNumber},
    {L"VrxDsmGetCurrentNumberOfArrays", &DriverProvider::GiveNumber},
    {L"VrxDsmGetCurrentNumberOfLuns", &DriverProvider::GiveNumber},
    {L"VrxDsmGetCurrentNumberOfCtlrs", &DriverProvider::GiveNumber},
    {L"VrxDsmGetCurrentNumberOfPaths", &DriverProvider::GiveNumber},
    {L"VrxDsmGetDriverVersion", &DriverProvider::GiveVersion},
    {L"VrxDsmGetArrayInfo", &DriverProvider::GiveArrays},
    {L"VrxDsmGetTPGInfo", &DriverProvider::GiveControllers},
    {L"VrxDsmGetTPGInfoWithStatus", &DriverProvider::GiveControllers},
    {L"VrxDsmGetMPGInfo", &DriverProvider::GiveLuns},
    {L"VrxDsmGetDeviceInfo", &DriverProvider::GiveDevices},
    {L"VrxDsmGetDeviceInfoWithStatus", &DriverProvider::GiveDevices},
    {L"VrxGetModuleInfo", &DriverProvider::GiveModule},
    {L"VrxGetControllerInfo", &DriverProvider::GiveModuleControllers},
    {L"VrxGetDiskInfo", &DriverProvider::GiveModuleDisks},
    {L"VrxGetModuleStatus", &DriverProvider::GiveModuleStatus},
    {L"VrxSetDebugLevel", &DriverProvider::SetDebugLevel},
    {L"VrxSetErrorLevel", &DriverProvider::SetErrorLevel},
    {L"VrxPerformScan", &DriverProvider::PerformScan},
    {L"VrxOptionControlRequest", &DriverProvider::ControlOptions},
};

DriverProvider::DriverProvider(Host& host, DriverModel driver)
    : m_host(host), m_driver(std::move(driver)),
      m_options(host, m_driver.options, StateKey(""), [this](std::uint32_t pathId) { return ConditionOf(pathId); }) {}

Outcome DriverProvider::EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) {
  if (m_driver.hasInstance) {
    CimObject instance(definition);
    instance.Set(L"InstanceName", m_driver.instanceName);
    instance.Set(L"Active", true);
    instance.Set(L"DsmContext", m_driver.context);
    instance.Set(L"DsmName", m_driver.name);
    instance.Set(L"DebugLevel", m_host.state.Number(StateKey("debugLevel"), m_driver.debugLevel));
    instance.Set(L"ErrorLevel",
                 static_cast<std::uint32_t>(m_host.state.Number(StateKey("errorLevel"), m_driver.errorLevel)));
    instances.push_back(std::move(instance));
  }
  return {};
}

Outcome DriverProvider::ExecuteMethod(const MethodCall& call, CimObject* output) {
  for (const MethodRow& row : kMethods) {
    if (EqualNames(row.name, call.method.name)) {
      return {(this->*row.run)(call, output)};
    }
  }
  return {static_cast<HRESULT>(WBEM_E_NOT_SUPPORTED)};
}

HRESULT DriverProvider::GiveNumber(const MethodCall& call, CimObject* output) {
  const std::wstring& name = call.method.outputs.front().name;
  output->Set(name, NumberFor(name, m_driver));
  return S_OK;
}

HRESULT DriverProvider::GiveVersion(const MethodCall& /*call*/, CimObject* output) {
  CimObject version(m_host.repository.RequireClass(L"VRXDSM_VERSION"));
  version.Set(L"MajorVersion", m_driver.version.major);
  version.Set(L"MinorVersion", m_driver.version.minor);
  version.Set(L"ProductBuild", m_driver.version.build);
  version.Set(L"QfeNumber", m_driver.version.qfe);
  output->Set(L"DSMVersion", CimValue::Embed(std::move(version)));
  return S_OK;
}

namespace {

template <class Append>
HRESULT GiveList(Repository& repository, const std::vector<const ArrayModel*>& arrays, std::wstring_view elementName,
                 std::wstring_view outputName, CimObject& output, Append append) {
  if (arrays.empty()) {
    return static_cast<HRESULT>(WBEM_E_FAILED);
  }
  const ClassRef elementClass = repository.RequireClass(elementName);
  std::vector<CimObject> elements;
  for (const ArrayModel* array : arrays) {
    append(*array, elementClass, elements);
  }
  CimObject list(repository.RequireClass(std::wstring(elementName) + L"_LIST"));
  list.Set(L"List", CimValue::Embed(std::move(elements)));
  output.Set(outputName, CimValue::Embed(std::move(list)));
  return S_OK;
}

} // namespace

HRESULT DriverProvider::GiveArrays(const MethodCall& call, CimObject* output) {
  return GiveList(m_host.repository, Select(call), L"VRXDSM_ARRAY_INFO", L"DSMArrayInfo", *output,
                  [](const ArrayModel& array, const ClassRef& elementClass, std::vector<CimObject>& elements) {
                    elements.push_back(Element(elementClass, array, ArrayRecord(array)));
                  });
}

HRESULT DriverProvider::GiveControllers(const MethodCall& call, CimObject* output) {
  return GiveList(m_host.repository, Select(call), L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER", L"TPGInfo", *output,
                  [](const ArrayModel& array, const ClassRef& elementClass, std::vector<CimObject>& elements) {
                    for (const ControllerModel& controller : array.controllers) {
                      elements.push_back(Element(elementClass, controller, ControllerRecord(controller)));
                    }
                  });
}

HRESULT DriverProvider::GiveLuns(const MethodCall& call, CimObject* output) {
  return GiveList(m_host.repository, Select(call), L"VRXDSM_MULTIPATH_DEVICE", L"MPGInfo", *output,
                  [this, isChanged = m_options.ChangesLuns()](const ArrayModel& array, const ClassRef& elementClass,
                                                              std::vector<CimObject>& elements) {
                    for (std::size_t index = 0; index < array.luns.size(); ++index) {
                      const LunModel& lun = array.luns[index];
                      const auto owner = static_cast<std::uint8_t>(CurrentOwner(array.id, index, lun.owner));
                      elements.push_back(
                          Element(elementClass, lun, LunRecord(isChanged ? CurrentLun(lun) : lun, owner)));
                    }
                  });
}

HRESULT DriverProvider::GiveDevices(const MethodCall& call, CimObject* output) {
  return GiveList(m_host.repository, Select(call), L"VRXDSM_DEVICE_INFO", L"DEVInfo", *output,
                  [](const ArrayModel& array, const ClassRef& elementClass, std::vector<CimObject>& elements) {
                    for (const DeviceModel& device : array.devices) {
                      elements.push_back(Element(elementClass, device, DeviceRecord(device)));
                    }
                  });
}

HRESULT DriverProvider::GiveOfModule(const MethodCall& call, CimObject& output, const ModuleAnswer& answer) {
  const auto module = std::find_if(m_driver.modules.begin(), m_driver.modules.end(),
                                   [&id = call.Input(L"ModuleId")](const ModuleModel& candidate) {
                                     return !id.IsNull() && candidate.id == id.Number();
                                   });
  if (module == m_driver.modules.end()) {
    return static_cast<HRESULT>(WBEM_E_FAILED);
  }
  std::vector<std::uint32_t> owners;
  for (const ModuleLun& lun : module->luns) {
    owners.push_back(CurrentOwner(module->id, owners.size(), lun.record["owner"]));
  }
  output.Set(call.method.outputs.front().name,
             CimValue::Embed(answer(m_host.repository, CurrentModule(*module, owners, m_options))));
  return S_OK;
}

HRESULT DriverProvider::GiveModule(const MethodCall& call, CimObject* output) {
  return GiveOfModule(call, *output, AnswerModule);
}

HRESULT DriverProvider::GiveModuleControllers(const MethodCall& call, CimObject* output) {
  return GiveOfModule(call, *output, AnswerControllers);
}

HRESULT DriverProvider::GiveModuleDisks(const MethodCall& call, CimObject* output) {
  return GiveOfModule(call, *output, AnswerDisks);
}

HRESULT DriverProvider::GiveModuleStatus(const MethodCall& call, CimObject* output) {
  return GiveOfModule(call, *output, [this](const Repository& repository, const ModuleModel& module) {
    return AnswerStatus(repository, module, {m_driver.maxLuns, m_driver.maxPaths});
  });
}

HRESULT DriverProvider::SetDebugLevel(const MethodCall& call, CimObject* /*output*/) {
  if (call.Input(L"DebugLevel").IsNull()) {
    return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
  }
  m_host.state.Set(StateKey("debugLevel"), Json(call.Input(L"DebugLevel").Number()));
  return S_OK;
}

HRESULT DriverProvider::SetErrorLevel(const MethodCall& call, CimObject* /*output*/) {
  if (call.Input(L"ErrorLevel").IsNull()) {
    return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
  }
  m_host.state.Set(StateKey("errorLevel"), Json(static_cast<std::uint32_t>(call.Input(L"ErrorLevel").Number())));
  return S_OK;
}

/// Moves every LUN to the controller that it prefers.
HRESULT DriverProvider::PerformScan(const MethodCall& call, CimObject* /*output*/) {
  const CimObject* scan = call.Input(L"ScanType").IfObject();
  if (scan == nullptr || scan->Value(L"ScanOption").TextOrEmpty() != L"forcerebalance") {
    return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
  }
  m_host.state.Update([this](StateChange& change) {
    const Json* scans = change.Find(StateKey("scans"));
    const std::uint64_t count = scans != nullptr && scans->IfUnsigned() != nullptr ? *scans->IfUnsigned() : 0;
    change.Set(StateKey("scans"), Json(count + 1));
    for (const ArrayModel& array : m_driver.arrays) {
      for (std::size_t index = 0; index < array.luns.size(); ++index) {
        MoveHome(array.id, index, array.luns[index].owner, array.luns[index].preferred, change);
      }
    }
    for (const ModuleModel& module : m_driver.modules) {
      for (std::size_t index = 0; index < module.luns.size(); ++index) {
        const ModuleRecord& lun = module.luns[index].record;
        MoveHome(module.id, index, lun["owner"], lun["preferred"], change);
      }
    }
  });
  return S_OK;
}

HRESULT DriverProvider::ControlOptions(const MethodCall& call, CimObject* output) {
  return m_options.Control(call, output);
}

PathCondition DriverProvider::ConditionOf(std::uint32_t pathId) const {
  for (const ArrayModel& array : m_driver.arrays) {
    for (const ControllerModel& controller : array.controllers) {
      for (const ControllerPathModel& path : controller.paths) {
        if (static_cast<std::uint32_t>(path.id) == pathId) {
          return array.inTransition ? PathCondition::kInTransition : PathCondition::kReady;
        }
      }
    }
  }
  for (const ModuleModel& module : m_driver.modules) {
    if (const PathCondition condition = simhost::ConditionOf(module, pathId); condition != PathCondition::kUnknown) {
      return condition;
    }
  }
  return PathCondition::kUnknown;
}

LunModel DriverProvider::CurrentLun(const LunModel& lun) const {
  static constexpr std::uint32_t kAdminOffline = 2;
  LunModel current = lun;
  if (const std::optional<std::uint32_t> policy = m_options.Policy()) {
    current.policy = static_cast<std::uint8_t>(*policy);
  }
  for (LunPathModel& path : current.paths) {
    if (m_options.IsOffline(static_cast<std::uint32_t>(path.id))) {
      path.internalState = kAdminOffline;
    }
  }
  return current;
}

std::vector<const ArrayModel*> DriverProvider::Select(const MethodCall& call) const {
  std::vector<const ArrayModel*> selected;
  const CimObject* arguments = call.Input(L"inputArguments").IfObject();
  if (arguments == nullptr || arguments->Value(L"argType").IsNull()) {
    return selected;
  }
  const std::uint64_t type = arguments->Value(L"argType").Number();
  const std::uint64_t id = arguments->Value(L"argID").Number();
  const std::wstring_view wwn = arguments->Value(L"argWWN").TextOrEmpty();
  for (const ArrayModel& array : m_driver.arrays) {
    if (type == kAll || (type == kById && array.id == id) || (type == kByWwn && WideWwn(array.wwn) == wwn)) {
      selected.push_back(&array);
    }
  }
  return selected;
}

std::uint32_t DriverProvider::CurrentOwner(std::uint32_t arrayId, std::size_t lunIndex, std::uint64_t described) const {
  return static_cast<std::uint32_t>(m_host.state.Number(OwnerKey(arrayId, lunIndex), described));
}

void DriverProvider::MoveHome(std::uint32_t arrayId, std::size_t lunIndex, std::uint64_t described,
                              std::uint64_t preferred, StateChange& change) const {
  const std::string key = OwnerKey(arrayId, lunIndex);
  const Json* moved = change.Find(key);
  const std::uint64_t owner = moved != nullptr && moved->IfUnsigned() != nullptr ? *moved->IfUnsigned() : described;
  if (owner != preferred) {
    change.Set(key, Json(preferred));
  }
}

std::string DriverProvider::OwnerKey(std::uint32_t arrayId, std::size_t lunIndex) const {
  return StateKey("arrays/" + std::to_string(arrayId) + "/luns/" + std::to_string(lunIndex) + "/owner");
}

std::string DriverProvider::StateKey(std::string_view key) const {
  return "dsms/" + Utf8FromWide(m_driver.service) + "/" + std::string(key);
}

} // namespace simhost
