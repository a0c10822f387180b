#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/limits.h"

#include <algorithm>

// One module's record, asked for by module id.

namespace korvex {

bool gTargetIsAbsent = false;
bool gTargetIsNamed = false;

namespace {

/// Room for a name that goes into the module tables: 31 characters and a terminator.
constexpr std::uint32_t kTargetNameRoom = 32;
constexpr std::uint8_t kUnusedSlot = 255;

bool AskForLimit(std::uint32_t requestCode, std::uint32_t& limit) {
  return limit != kUnknownLimit || Ioctl(requestCode, &limit) != kIoctlFailed;
}

/// The interface types of the paths present, packed at the front.
void PackInterfaceTypes(const RdacInfo& info, std::span<std::uint8_t> interfaceTypes) {
  std::ranges::fill(interfaceTypes, kUnusedSlot);
  std::size_t used = 0;
  for (std::uint32_t controller = 0; controller < RdacInfo::kControllers; ++controller) {
    for (std::uint32_t i = 0; i < info.MaxPaths(); ++i) {
      const RdacPath& path = *info.Path(controller, i);
      if (path.Has(path_flag::kPresent) && used < interfaceTypes.size()) {
        interfaceTypes[used++] = path.InterfaceType;
      }
    }
  }
}

} // namespace

bool AskForRecordLimits() {
  return AskForLimit(request::kGetMaxLunsSupported, gUtilMaxLuns) &&
         AskForLimit(request::kGetMaxPathsSupported, gUtilMaxPaths);
}

int GetRdacInfoForTarget(std::uint32_t moduleId, RdacInfoRequest& request) {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return -1;
  }
  if (!AskForRecordLimits()) {
    return 0;
  }
  TracePrint("target number = %d\n", static_cast<int>(moduleId));
  if (gUtilMaxLuns == 0 || gUtilMaxPaths == 0) {
    PrintError("MaxLuns(0x%x) or MaxPaths(0x%x) is not defined\n", static_cast<unsigned>(gUtilMaxLuns),
               static_cast<unsigned>(gUtilMaxPaths));
    return 0;
  }
  request.moduleId = moduleId;
  if (!request.info.Allocate(gUtilMaxLuns, gUtilMaxPaths)) {
    PrintError("Unable to malloc memory for RdacInfo - %s!\n", RuntimeErrorText());
    return 0;
  }
  TracePrint("Send RdacInfo request\n");
  if (Ioctl(request::kGetRdacInfo, &request) == kIoctlFailed) {
    TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
    return 0;
  }
  return 1;
}

int utilGetTargetName(std::uint32_t moduleId, std::span<std::uint8_t> interfaceTypes) {
  gTargetIsAbsent = false;
  gTargetIsNamed = false;
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return 0;
  }
  AskForLimit(request::kGetMaxLunsSupported, gUtilMaxLuns);
  AskForLimit(request::kGetMaxPathsSupported, gUtilMaxPaths);
  TracePrint("utilGetTargetName() : gUtilMaxLuns =%d  gUtilMaxPaths=%d.\n", static_cast<int>(gUtilMaxLuns),
             static_cast<int>(gUtilMaxPaths));
  RdacInfoRequest request;
  request.moduleId = moduleId;
  request.moduleNameRoom = kTargetNameRoom;
  if (!request.info.Allocate(gUtilMaxLuns, gUtilMaxPaths)) {
    PrintError("Unable to malloc memory for RdacInfo - %s!\n", RuntimeErrorText());
    return 0;
  }
  TracePrint("Send RdacInfo request to target %d. \n", static_cast<int>(moduleId));
  if (Ioctl(request::kGetRdacInfo, &request) == kIoctlFailed) {
    TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
    gTargetIsAbsent = request.isModuleRefused;
    return 0;
  }
  gTargetIsNamed = request.isWwnWhole;
  BoundedCopy(gModuleName, kModuleNameSlot, request.moduleName.data());
  std::ranges::copy(request.info.Module().WWN, gModuleWWN);
  if (!interfaceTypes.empty()) {
    PackInterfaceTypes(request.info, interfaceTypes);
  }
  TracePrint("Freeing the memory allocated for rdac info.\n");
  return 1;
}

} // namespace korvex
