#pragma once

#include <cstdint>

// The codes that number the requests to the DSM.

namespace korvex::request {

enum Code : std::uint32_t {
  kGetMaxPathsSupported = 0x4D01,
  kGetMaxLunsSupported = 0x4D02,
  kGetRdacInfo = 0x4D03,
  kSetDebugLevel = 0x4D07,
  kSetErrorLevel = 0x4D08,
  kReenumerateDeviceTree = 0x4D09,
  kGetMaxModulesSupported = 0x4D0A,
  kGetModuleStatus = 0x4D0B,
  kSendOptionControlRequest = 0x4D0C,
  kPerformScan = 0x4D0D,
  kGetMofFileVersion = 0x4DF0,
  kGetDriverVersion = 0x4DF1,
  kCollectDsmArrayInfo = 0x4DF2,
  kGetArrayInfo = 0x4DF3,
  kGetCurrentNumberOfArrays = 0x4DF4,
  kGetTpgInfo = 0x4DF5,
  kGetMpgInfo = 0x4DF6,
  kGetDeviceInfo = 0x4DF7,
  kGetCurrentNumberOfLuns = 0x4DF8,
  kGetCurrentNumberOfCtlrs = 0x4DF9,
  kGetCurrentNumberOfPaths = 0x4DFA,
  kGetTpgInfoWithStatus = 0x4DFB,
  kGetDeviceInfoWithStatus = 0x4DFC,
  kGetControllerInfo = 0x4F00,
  kGetDiskInfo = 0x4F01,
  kGetModuleInfo = 0x4F02,
  kOptionControlRequest = 0x4F03,
};

} // namespace korvex::request
