#include "app/channel/request_table.h"

#include "app/channel/control_requests.h"
#include "app/channel/request_codes.h"

namespace korvex {
namespace {

const RequestCallbacks* gCallbacks = nullptr;

// These pass a request on to the room above; a failure while that is not connected.

std::uint32_t CollectThroughConnection(std::uint32_t requestCode, void* argument, OrbWmiVariant& output) {
  return gCallbacks == nullptr ? 1 : gCallbacks->collectDsmArrayInfo(requestCode, argument, output);
}

std::uint32_t GetRdacInfoThroughConnection(std::uint32_t requestCode, void* argument, OrbWmiVariant& output) {
  return gCallbacks == nullptr ? 1 : gCallbacks->getRdacInfo(requestCode, argument, output);
}

std::uint32_t SendOptionsThroughConnection(std::uint32_t requestCode, void* argument, OrbWmiVariant& output) {
  return gCallbacks == nullptr ? 1 : gCallbacks->sendOptionControlRequest(requestCode, argument, output);
}

constexpr RequestTableEntry kRequestTable[] = {
    {request::kGetDeviceInfo, L"VrxDsmGetDeviceInfo", L"inputArguments", L"DEVInfo", nullptr},
    {request::kGetDeviceInfoWithStatus, L"VrxDsmGetDeviceInfoWithStatus", L"inputArguments", L"DEVInfo", nullptr},
    {request::kGetMpgInfo, L"VrxDsmGetMPGInfo", L"inputArguments", L"MPGInfo", nullptr},
    {request::kGetTpgInfo, L"VrxDsmGetTPGInfo", L"inputArguments", L"TPGInfo", nullptr},
    {request::kGetTpgInfoWithStatus, L"VrxDsmGetTPGInfoWithStatus", L"inputArguments", L"TPGInfo", nullptr},
    {request::kGetCurrentNumberOfArrays, L"VrxDsmGetCurrentNumberOfArrays", nullptr, L"NumberOfArrays", nullptr},
    {request::kGetCurrentNumberOfLuns, L"VrxDsmGetCurrentNumberOfLuns", nullptr, L"NumberOfLuns", nullptr},
    {request::kGetCurrentNumberOfCtlrs, L"VrxDsmGetCurrentNumberOfCtlrs", nullptr, L"NumberOfControllers", nullptr},
    {request::kGetCurrentNumberOfPaths, L"VrxDsmGetCurrentNumberOfPaths", nullptr, L"NumberOfPaths", nullptr},
    {request::kCollectDsmArrayInfo, nullptr, nullptr, nullptr, &CollectThroughConnection},
    {request::kGetArrayInfo, L"VrxDsmGetArrayInfo", L"inputArguments", L"DSMArrayInfo", nullptr},
    {request::kGetDriverVersion, L"VrxDsmGetDriverVersion", nullptr, L"DSMVersion", nullptr},
    {request::kGetMofFileVersion, L"VrxGetMofFileVersion", nullptr, L"MofFileVersion", nullptr},
    {request::kGetMaxModulesSupported, L"VrxGetMaxModulesSupported", nullptr, L"MaxModules", nullptr},
    {request::kGetMaxPathsSupported, L"VrxGetMaxPathsSupported", nullptr, L"MaxPaths", nullptr},
    {request::kGetMaxLunsSupported, L"VrxGetMaxLunsSupported", nullptr, L"MaxLuns", nullptr},
    {request::kGetRdacInfo, nullptr, nullptr, nullptr, &GetRdacInfoThroughConnection},
    {request::kGetModuleInfo, L"VrxGetModuleInfo", L"ModuleId", L"ModuleInfo", nullptr},
    {request::kGetControllerInfo, L"VrxGetControllerInfo", L"ModuleId", L"ControllerInfo", nullptr},
    {request::kGetDiskInfo, L"VrxGetDiskInfo", L"ModuleId", L"DiskInfo", nullptr},
    {request::kGetModuleStatus, L"VrxGetModuleStatus", L"ModuleId", L"ModuleStatus", nullptr},
    {request::kSetDebugLevel, L"VrxSetDebugLevel", L"DebugLevel", nullptr, nullptr},
    {request::kSetErrorLevel, L"VrxSetErrorLevel", L"ErrorLevel", nullptr, nullptr},
    {request::kReenumerateDeviceTree, nullptr, nullptr, nullptr, &ReenumerateDeviceTree},
    {request::kPerformScan, L"VrxPerformScan", L"ScanType", nullptr, nullptr},
    {request::kSendOptionControlRequest, nullptr, nullptr, nullptr, &SendOptionsThroughConnection},
    {request::kOptionControlRequest, L"VrxOptionControlRequest", L"InputParams", L"OutputParams", nullptr},
    {0, nullptr, nullptr, nullptr, nullptr},
};

} // namespace

const RequestTableEntry* FindRequest(std::uint32_t code) {
  for (const RequestTableEntry* row = kRequestTable; row->code != 0; ++row) {
    if (row->code == code) {
      return row;
    }
  }
  return nullptr;
}

void ConnectRequestTable(const RequestCallbacks& callbacks) {
  gCallbacks = &callbacks;
}

const RequestCallbacks* ConnectedCallbacks() {
  return gCallbacks;
}

} // namespace korvex
