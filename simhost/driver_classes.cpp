#include "simhost/driver_classes.h"

#include "simhost/driver_options.h"
#include "simhost/module_answers.h"
#include "simhost/module_status.h"

#include <string>
#include <utility>

namespace simhost {
namespace {

void AddDataClass(Repository& repository, std::wstring_view name, std::vector<PropertyDefinition> properties) {
  CimClass definition;
  definition.name = name;
  definition.properties = std::move(properties);
  repository.AddClass(std::move(definition));
}

/// A class of binary records and the list that holds them.
void AddRecordClasses(Repository& repository, const std::wstring& name) {
  AddDataClass(repository, name,
               {Property(L"Size", CIM_UINT32), Property(L"Version", CIM_UINT32),
                Property(L"Buffer", CIM_UINT8 | CIM_FLAG_ARRAY)});
  AddDataClass(repository, name + L"_LIST", {EmbeddedArray(L"List", name)});
}

MethodDefinition Asking(std::wstring_view name, std::wstring_view output) {
  return {std::wstring(name), {}, {Property(output, CIM_UINT32)}};
}

/// A method that answers for the arrays that its input selects.
MethodDefinition Selecting(std::wstring_view name, std::wstring_view output, std::wstring_view outputClass) {
  return {
      std::wstring(name), {Embedded(L"inputArguments", L"VRXDSM_INPUT_ARGUMENTS")}, {Embedded(output, outputClass)}};
}

/// What every DSM can do.
std::vector<MethodDefinition> CommonMethods() {
  return {
      Asking(L"VrxGetMaxModulesSupported", L"MaxModules"),
      Asking(L"VrxGetMaxPathsSupported", L"MaxPaths"),
      Asking(L"VrxGetMaxLunsSupported", L"MaxLuns"),
      Asking(L"VrxGetMofFileVersion", L"MofFileVersion"),
      {L"VrxSetDebugLevel", {Property(L"DebugLevel", CIM_SINT64)}, {}},
      {L"VrxSetErrorLevel", {Property(L"ErrorLevel", CIM_SINT32)}, {}},
      {L"VrxPerformScan", {Embedded(L"ScanType", L"VRXDSM_SCAN_OPTION")}, {}},
      {L"VrxOptionControlRequest", {Property(L"InputParams", CIM_OBJECT)}, {Property(L"OutputParams", CIM_OBJECT)}}};
}

void AppendGeneration2Methods(std::vector<MethodDefinition>& methods) {
  const std::vector<MethodDefinition> generation2 = {
      Asking(L"VrxDsmGetCurrentNumberOfArrays", L"NumberOfArrays"),
      Asking(L"VrxDsmGetCurrentNumberOfLuns", L"NumberOfLuns"),
      Asking(L"VrxDsmGetCurrentNumberOfCtlrs", L"NumberOfControllers"),
      Asking(L"VrxDsmGetCurrentNumberOfPaths", L"NumberOfPaths"),
      {L"VrxDsmGetDriverVersion", {}, {Embedded(L"DSMVersion", L"VRXDSM_VERSION")}},
      Selecting(L"VrxDsmGetArrayInfo", L"DSMArrayInfo", L"VRXDSM_ARRAY_INFO_LIST"),
      Selecting(L"VrxDsmGetTPGInfo", L"TPGInfo", L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST"),
      Selecting(L"VrxDsmGetTPGInfoWithStatus", L"TPGInfo", L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST"),
      Selecting(L"VrxDsmGetMPGInfo", L"MPGInfo", L"VRXDSM_MULTIPATH_DEVICE_LIST"),
      Selecting(L"VrxDsmGetDeviceInfo", L"DEVInfo", L"VRXDSM_DEVICE_INFO_LIST"),
      Selecting(L"VrxDsmGetDeviceInfoWithStatus", L"DEVInfo", L"VRXDSM_DEVICE_INFO_LIST")};
  methods.insert(methods.end(), generation2.begin(), generation2.end());
}

} // namespace

void AddDriverDataClasses(Repository& repository, int generation) {
  AddDataClass(repository, L"VRXDSM_SCAN_OPTION", {Property(L"ScanOption", CIM_STRING)});
  DriverOptions::AddClasses(repository);
  if (generation != 2) {
    AddModuleClasses(repository);
    AddModuleStatusClass(repository);
    return;
  }
  AddDataClass(repository, L"VRXDSM_VERSION",
               {Property(L"MajorVersion", CIM_UINT32), Property(L"MinorVersion", CIM_UINT32),
                Property(L"ProductBuild", CIM_UINT32), Property(L"QfeNumber", CIM_UINT32)});
  AddDataClass(repository, L"VRXDSM_INPUT_ARGUMENTS",
               {Property(L"argType", CIM_UINT8), Property(L"argID", CIM_UINT8), Property(L"argWWN", CIM_STRING)});
  AddRecordClasses(repository, L"VRXDSM_ARRAY_INFO");
  AddRecordClasses(repository, L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER");
  AddRecordClasses(repository, L"VRXDSM_MULTIPATH_DEVICE");
  AddRecordClasses(repository, L"VRXDSM_DEVICE_INFO");
}

CimClass DriverMethodsClass(const DriverModel& driver) {
  CimClass definition;
  definition.name = driver.methodsClass;
  definition.properties = {Key(L"InstanceName"),
                           Property(L"Active", CIM_BOOLEAN),
                           Property(L"DsmContext", CIM_UINT64),
                           Property(L"DsmName", CIM_STRING),
                           Property(L"DebugLevel", CIM_UINT64),
                           Property(L"ErrorLevel", CIM_UINT32)};
  definition.methods = CommonMethods();
  if (driver.generation == 2) {
    AppendGeneration2Methods(definition.methods);
  } else {
    AppendModuleMethods(definition.methods);
  }
  return definition;
}

} // namespace simhost
