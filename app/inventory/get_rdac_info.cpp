#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "platform/wbem.h"

#include <cstdint>

// The composite request: asks the DSM for a module's three answers and copies them into the record.

namespace korvex {

namespace {

/// Sends one of the module's requests; the answer comes back in `holder`.
bool SendForModule(std::uint32_t requestCode, std::uint32_t moduleId, OrbWmiVariant& holder,
                   MethodOutcome* outcome = nullptr) {
  if (holder.SetProperty(&moduleId, sizeof moduleId, CIM_UINT32) == kWmiSuccess &&
      Ioctl(requestCode, &holder, outcome) != kIoctlFailed) {
    return true;
  }
  TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
  return false;
}

} // namespace

std::uint32_t GetRdacInfo(std::uint32_t /*requestCode*/, void* argument, OrbWmiVariant& /*output*/) {
  RdacInfoRequest& request = *static_cast<RdacInfoRequest*>(argument);
  // The lower half of the address is all that the line has room for.
  const auto address = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(request.info.Address()));
  TracePrint("GetRdacInfo: Target(0x%x);BuffSize(0x%x);Buff(0x%x)\n", static_cast<unsigned>(request.moduleId),
             static_cast<unsigned>(request.info.SizeInBytes()), address);
  request.info.Clear();

  OrbWmiVariant moduleInfo;
  OrbWmiVariant controllerInfo;
  OrbWmiVariant diskInfo;
  TracePrint("GetModuleInfo\n");
  MethodOutcome outcome = MethodOutcome::kUnknown;
  const bool isTold = SendForModule(request::kGetModuleInfo, request.moduleId, moduleInfo, &outcome);
  request.isModuleRefused = outcome == MethodOutcome::kRefused;
  if (!isTold) {
    return 1;
  }
  TracePrint("GetControllerInfo\n");
  if (!SendForModule(request::kGetControllerInfo, request.moduleId, controllerInfo)) {
    return 1;
  }
  TracePrint("GetLunInfo\n");
  if (!SendForModule(request::kGetDiskInfo, request.moduleId, diskInfo)) {
    return 1;
  }
  TracePrint("CopyModuleInfoToRdacInfo\n");
  CopyModuleInfoToRdacInfo(request, moduleInfo);
  TracePrint("CopyControllerInfoToRdacInfo\n");
  CopyControllerInfoToRdacInfo(request, controllerInfo);
  TracePrint("CopyDiskInfoToRdacInfo\n");
  CopyDiskInfoToRdacInfo(request, diskInfo);
  return 0;
}

} // namespace korvex
