#include "app/channel/request_output.h"

#include "app/channel/request_codes.h"
#include "app/channel/request_table.h"
#include "app/cli/console/trace.h"
#include "platform/com_owners.h"
#include "platform/wbem.h"
#include "wmi/orb_wmi_common.h"

#include <algorithm>
#include <iterator>

namespace korvex {
namespace {

constexpr std::uint32_t kNumberCodes[] = {
    request::kGetMaxPathsSupported,    request::kGetMaxLunsSupported,      request::kGetMaxModulesSupported,
    request::kGetMofFileVersion,       request::kGetCurrentNumberOfArrays, request::kGetCurrentNumberOfLuns,
    request::kGetCurrentNumberOfCtlrs, request::kGetCurrentNumberOfPaths,
};

constexpr std::uint32_t kObjectCodes[] = {
    request::kGetDriverVersion,
    request::kGetArrayInfo,
    request::kGetTpgInfo,
    request::kGetMpgInfo,
    request::kGetDeviceInfo,
    request::kGetTpgInfoWithStatus,
    request::kGetDeviceInfoWithStatus,
    request::kGetControllerInfo,
    request::kGetDiskInfo,
    request::kGetModuleInfo,
    request::kGetModuleStatus,
    request::kOptionControlRequest,
};

bool Contains(const std::uint32_t* first, const std::uint32_t* last, std::uint32_t code) {
  return std::find(first, last, code) != last;
}

wmiReturn ReturnNumber(OrbWmiVariant& output, void* argument) {
  if (argument == nullptr) {
    return kWmiNotDefined;
  }
  return output.GetProperty(argument, sizeof(std::uint32_t), CIM_UINT32);
}

wmiReturn ReturnObject(OrbWmiVariant& output, OrbWmiVariant* holder) {
  if (holder == nullptr) {
    return kNothingToDo;
  }
  holder->Clear();
  platform::Variant object;
  wmiReturn status = output.GetProperty(&object.get(), sizeof(VARIANT), CIM_OBJECT);
  if (status != kWmiSuccess) {
    return status;
  }
  if (object.get().vt != VT_UNKNOWN || object.get().punkVal == nullptr) {
    return kWmiNullValue;
  }
  status = holder->SetProperty(object.get().punkVal, 0, CIM_OBJECT);
  if (status == kWmiSuccess) {
    // The holder has taken the reference over.
    object.get().vt = VT_EMPTY;
  }
  return status;
}

wmiReturn ReturnOutput(std::uint32_t requestCode, OrbWmiVariant* output, void* argument) {
  const OutputKind kind = RequestOutputKind(requestCode);
  if (kind == OutputKind::kNone || output == nullptr) {
    return kNothingToDo;
  }
  return kind == OutputKind::kNumber ? ReturnNumber(*output, argument)
                                     : ReturnObject(*output, static_cast<OrbWmiVariant*>(argument));
}

wmiReturn PrepareOutput(std::uint32_t requestCode, OrbWmiVariant& output) {
  switch (RequestOutputKind(requestCode)) {
  case OutputKind::kNumber:
    return OrbWmiCommon::SetCimType(output.GetVariant(), CIM_UINT32);
  case OutputKind::kObject:
    return OrbWmiCommon::SetCimType(output.GetVariant(), CIM_OBJECT);
  case OutputKind::kNone:
    break;
  }
  return kNothingToDo;
}

} // namespace

OutputKind RequestOutputKind(std::uint32_t requestCode) {
  if (Contains(std::begin(kNumberCodes), std::end(kNumberCodes), requestCode)) {
    return OutputKind::kNumber;
  }
  return Contains(std::begin(kObjectCodes), std::end(kObjectCodes), requestCode) ? OutputKind::kObject
                                                                                 : OutputKind::kNone;
}

wmiReturn UtilOutputParameter(std::uint32_t requestCode, OrbWmiVariant& output) {
  TracePrint("UtilOutputParameter called 0x%x\n", static_cast<unsigned>(requestCode));
  const wmiReturn status = PrepareOutput(requestCode, output);
  TracePrint("UtilOutputParameter returned 0x%x\n", static_cast<unsigned>(status));
  return status;
}

wmiReturn UtilReturnParameter(std::uint32_t requestCode, OrbWmiVariant* output, void* argument) {
  TracePrint("UtilReturnParameter called 0x%x\n", static_cast<unsigned>(requestCode));
  const wmiReturn status = ReturnOutput(requestCode, output, argument);
  TracePrint("UtilReturnParameter returned 0x%x\n", static_cast<unsigned>(status));
  return status;
}

} // namespace korvex
