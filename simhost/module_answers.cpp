#include "simhost/module_answers.h"

#include "simhost/module_properties.h"

#include <string>
#include <utility>

namespace simhost {
namespace {

constexpr CIMTYPE kByteArray = CIM_UINT8 | CIM_FLAG_ARRAY;

void AddClass(Repository& repository, std::wstring_view name, std::span<const ModuleProperty> numbers,
              std::vector<PropertyDefinition> others = {}) {
  CimClass definition;
  definition.name = name;
  definition.properties = ModuleRecord::Definitions(numbers);
  definition.properties.insert(definition.properties.end(), std::make_move_iterator(others.begin()),
                               std::make_move_iterator(others.end()));
  repository.AddClass(std::move(definition));
}

MethodDefinition OfModule(std::wstring_view name, std::wstring_view output, std::wstring_view outputClass) {
  return {std::wstring(name), {Property(L"ModuleId", CIM_UINT32)}, {Embedded(output, outputClass)}};
}

CimObject Numbers(const ClassRef& definition, const ModuleRecord& record) {
  CimObject object(definition);
  record.Fill(object);
  return object;
}

CimObject List(const Repository& repository, std::wstring_view listClass, std::wstring_view property,
               std::vector<CimObject> elements) {
  CimObject list(repository.RequireClass(listClass));
  list.Set(property, CimValue::Embed(std::move(elements)));
  return list;
}

/// The classes of a LUN's answer, looked up once.
struct DiskClasses {
  ClassRef disk;
  ClassRef driveInfo;
  ClassRef drive;
};

CimObject DriveInfo(const DiskClasses& classes, const ModuleDriveInfo& info) {
  std::vector<CimObject> drives;
  drives.reserve(info.drives.size());
  for (const ModuleRecord& drive : info.drives) {
    drives.push_back(Numbers(classes.drive, drive));
  }
  CimObject object = Numbers(classes.driveInfo, info.record);
  object.Set(L"DriveInfoList", CimValue::Embed(std::move(drives)));
  return object;
}

CimObject Disk(const DiskClasses& classes, const ModuleLun& lun) {
  std::vector<CimObject> infos;
  for (const ModuleDriveInfo& info : lun.driveInfos) {
    infos.push_back(DriveInfo(classes, info));
  }
  CimObject object = Numbers(classes.disk, lun.record);
  object.Set(L"WWN", CimValue::Bytes(lun.wwn));
  object.Set(L"DriveInfoList", CimValue::Embed(std::move(infos)));
  return object;
}

} // namespace

void AddModuleClasses(Repository& repository) {
  AddClass(repository, L"VRXDSM_ARRAY_MODULE", ModuleProperties(),
           {Property(L"Name", CIM_STRING), Property(L"WWN", kByteArray)});
  AddClass(repository, L"VRXDSM_CONTROLLER_ADDRESS", ModuleAddressProperties());
  AddClass(repository, L"VRXDSM_CONTROLLER_PATH", ModulePathProperties(),
           {Embedded(L"ControllerAddress", L"VRXDSM_CONTROLLER_ADDRESS")});
  AddClass(repository, L"VRXDSM_CONTROLLER_MODULE", ModuleControllerProperties(),
           {EmbeddedArray(L"ControllerPathList", L"VRXDSM_CONTROLLER_PATH")});
  AddClass(repository, L"VRXDSM_CONTROLLER_MODULE_LIST", {},
           {EmbeddedArray(L"ControllerModuleList", L"VRXDSM_CONTROLLER_MODULE")});
  AddClass(repository, L"VRXDSM_DRIVEINFO", ModuleDriveProperties());
  AddClass(repository, L"VRXDSM_DRIVEINFO_LIST", ModuleDriveInfoProperties(),
           {EmbeddedArray(L"DriveInfoList", L"VRXDSM_DRIVEINFO")});
  AddClass(repository, L"VRXDSM_DISKINFO", ModuleLunProperties(),
           {Property(L"WWN", kByteArray), EmbeddedArray(L"DriveInfoList", L"VRXDSM_DRIVEINFO_LIST")});
  AddClass(repository, L"VRXDSM_DISKINFO_LIST", {}, {EmbeddedArray(L"DiskInfoList", L"VRXDSM_DISKINFO")});
}

void AppendModuleMethods(std::vector<MethodDefinition>& methods) {
  methods.push_back(OfModule(L"VrxGetModuleInfo", L"ModuleInfo", L"VRXDSM_ARRAY_MODULE"));
  methods.push_back(OfModule(L"VrxGetControllerInfo", L"ControllerInfo", L"VRXDSM_CONTROLLER_MODULE_LIST"));
  methods.push_back(OfModule(L"VrxGetDiskInfo", L"DiskInfo", L"VRXDSM_DISKINFO_LIST"));
  methods.push_back(OfModule(L"VrxGetModuleStatus", L"ModuleStatus", L"UTIL_STATUS_INFO"));
}

CimObject AnswerModule(const Repository& repository, const ModuleModel& module) {
  const ClassRef definition = repository.RequireClass(L"VRXDSM_ARRAY_MODULE");
  CimObject object = Numbers(definition, module.record);
  object.Force(*definition->PropertyIndex(L"Name"), module.name,
               module.name.IfBytes() != nullptr ? kByteArray : CIMTYPE{CIM_STRING});
  object.Set(L"WWN", CimValue::Bytes(module.wwn));
  return object;
}

CimObject AnswerControllers(const Repository& repository, const ModuleModel& module) {
  const ClassRef controllerClass = repository.RequireClass(L"VRXDSM_CONTROLLER_MODULE");
  const ClassRef pathClass = repository.RequireClass(L"VRXDSM_CONTROLLER_PATH");
  const ClassRef addressClass = repository.RequireClass(L"VRXDSM_CONTROLLER_ADDRESS");
  std::vector<CimObject> controllers;
  for (const ModuleController& controller : module.controllers) {
    std::vector<CimObject> paths;
    for (const ModulePath& path : controller.paths) {
      paths.push_back(Numbers(pathClass, path.record));
      paths.back().Set(L"ControllerAddress", CimValue::Embed(Numbers(addressClass, path.address)));
    }
    controllers.push_back(Numbers(controllerClass, controller.record));
    controllers.back().Set(L"ControllerPathList", CimValue::Embed(std::move(paths)));
  }
  return List(repository, L"VRXDSM_CONTROLLER_MODULE_LIST", L"ControllerModuleList", std::move(controllers));
}

CimObject AnswerDisks(const Repository& repository, const ModuleModel& module) {
  const DiskClasses classes{repository.RequireClass(L"VRXDSM_DISKINFO"),
                            repository.RequireClass(L"VRXDSM_DRIVEINFO_LIST"),
                            repository.RequireClass(L"VRXDSM_DRIVEINFO")};
  std::vector<CimObject> disks;
  for (const ModuleLun& lun : module.luns) {
    disks.push_back(Disk(classes, lun));
  }
  return List(repository, L"VRXDSM_DISKINFO_LIST", L"DiskInfoList", std::move(disks));
}

} // namespace simhost
