#include "app/channel/request_input.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/channel/request_table.h"
#include "platform/wbem.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"

#include <cstring>

namespace korvex {
namespace {

/// A property of an argument object: its name and the bytes of its value.
struct ArgumentProperty {
  const wchar_t* name;
  const void* value;
  std::uint32_t length;
};

/// A new instance of an argument class with these properties becomes the held value.
template <std::size_t count>
wmiReturn SetArgumentObject(const wchar_t* className, const ArgumentProperty (&properties)[count],
                            OrbWmiVariant& input) {
  OrbWmiClass argumentClass;
  wmiReturn status = argumentClass.Initialize(gDsmChannel->connection, className);
  if (status != kWmiSuccess) {
    return status;
  }
  OrbWmiEnumerator instance;
  status = instance.InitializeInputEnumerator(&argumentClass);
  if (status != kWmiSuccess) {
    return status;
  }
  for (const ArgumentProperty& property : properties) {
    status = instance.SetProperty(property.name, property.value, property.length);
    if (status != kWmiSuccess) {
      return status;
    }
  }
  IUnknown* object = instance.GetEnumeratorInterface();
  if (object == nullptr) {
    return kWmiRequestFailed;
  }
  status = input.SetProperty(object, 0, CIM_OBJECT);
  if (status != kWmiSuccess) {
    object->Release();
  }
  return status;
}

/// The level's 32 bits arrive in the lower half of a signed 64-bit number.
wmiReturn BuildDebugLevel(void* argument, OrbWmiVariant& input) {
  const std::int64_t level = *static_cast<const std::uint32_t*>(argument);
  return input.SetProperty(&level, sizeof level, CIM_SINT64);
}

wmiReturn BuildErrorLevel(void* argument, OrbWmiVariant& input) {
  return input.SetProperty(argument, sizeof(std::uint32_t), CIM_SINT32);
}

wmiReturn BuildModuleId(void* argument, OrbWmiVariant& input) {
  std::uint32_t moduleId = 0;
  const wmiReturn status = static_cast<OrbWmiVariant*>(argument)->GetProperty(&moduleId, sizeof moduleId, CIM_UINT32);
  return status == kWmiSuccess ? input.SetProperty(&moduleId, sizeof moduleId, CIM_UINT32) : status;
}

wmiReturn BuildScanOption(void* /*argument*/, OrbWmiVariant& input) {
  static constexpr char kScanOption[] = "forcerebalance";
  const ArgumentProperty properties[] = {{L"ScanOption", kScanOption, sizeof kScanOption}};
  return SetArgumentObject(L"VRXDSM_SCAN_OPTION", properties, input);
}

wmiReturn BuildInputArguments(void* argument, OrbWmiVariant& input) {
  std::uint64_t address = 0;
  const wmiReturn status = static_cast<OrbWmiVariant*>(argument)->GetProperty(&address, sizeof address, CIM_UINT64);
  if (status != kWmiSuccess) {
    return status;
  }
  const InputArgumentsRecord* record = nullptr;
  static_assert(sizeof(void*) == sizeof address);
  std::memcpy(&record, &address, sizeof address);
  if (record == nullptr) {
    return kWmiNotDefined;
  }
  const ArgumentProperty properties[] = {{L"argType", &record->argType, sizeof record->argType},
                                         {L"argID", &record->argID, sizeof record->argID},
                                         {L"argWWN", record->argWWN, 32}};
  return SetArgumentObject(L"VRXDSM_INPUT_ARGUMENTS", properties, input);
}

/// The room above knows what an option request is made of.
wmiReturn BuildOptionRequest(void* argument, OrbWmiVariant& input) {
  const RequestCallbacks* callbacks = ConnectedCallbacks();
  return callbacks == nullptr ? kNothingToDo : callbacks->buildOptionRequest(argument, input);
}

/// How the input of a request is built.
struct InputRow {
  std::uint32_t code;
  bool usesArgument;
  wmiReturn (*build)(void* argument, OrbWmiVariant& input);
};

constexpr InputRow kInputRows[] = {
    {request::kSetDebugLevel, true, &BuildDebugLevel},
    {request::kSetErrorLevel, true, &BuildErrorLevel},
    {request::kGetModuleStatus, true, &BuildModuleId},
    {request::kGetControllerInfo, true, &BuildModuleId},
    {request::kGetDiskInfo, true, &BuildModuleId},
    {request::kGetModuleInfo, true, &BuildModuleId},
    {request::kPerformScan, false, &BuildScanOption},
    {request::kGetArrayInfo, true, &BuildInputArguments},
    {request::kGetTpgInfo, true, &BuildInputArguments},
    {request::kGetMpgInfo, true, &BuildInputArguments},
    {request::kGetDeviceInfo, true, &BuildInputArguments},
    {request::kGetTpgInfoWithStatus, true, &BuildInputArguments},
    {request::kGetDeviceInfoWithStatus, true, &BuildInputArguments},
    {request::kOptionControlRequest, true, &BuildOptionRequest},
};

} // namespace

wmiReturn UtilInputParameter(std::uint32_t requestCode, void* argument, OrbWmiVariant& input) {
  for (const InputRow& row : kInputRows) {
    if (row.code == requestCode) {
      return row.usesArgument && argument == nullptr ? kWmiNotDefined : row.build(argument, input);
    }
  }
  return kNothingToDo;
}

} // namespace korvex
