#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/limits.h"
#include "app/inventory/wwn_text.h"

#include <cstring>

namespace korvex {

namespace {

/// Asks for what is unknown of the limits; false after a message.
bool AskForLimits() {
  if (gUtilMaxLuns == kUnknownLimit && Ioctl(request::kGetMaxLunsSupported, &gUtilMaxLuns) == kIoctlFailed) {
    PrintError("Unable to get maxluns request - %s!\n", RuntimeErrorText());
    return false;
  }
  if (gUtilMaxPaths == kUnknownLimit && Ioctl(request::kGetMaxPathsSupported, &gUtilMaxPaths) == kIoctlFailed) {
    PrintError("Unable to get maxpaths request - %s!\n", RuntimeErrorText());
    return false;
  }
  if (MaxArrayModules == kUnknownLimit && !AskForArrayCount()) {
    PrintError("Unable to get maxmodules request - %s!\n", RuntimeErrorText());
    return false;
  }
  return true;
}

/// Reads module after module until one has this WWN; false after a message.
bool FindModule(const char* wwn, RdacInfoRequest& request) {
  for (std::uint32_t id = 0; id < MaxArrayModules; ++id) {
    TracePrint("Send RdacInfo request to target %d.\n", static_cast<int>(id));
    request.moduleId = id;
    if (Ioctl(request::kGetRdacInfo, &request) == kIoctlFailed) {
      TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
      continue;
    }
    if (std::strcmp(WwnText(request.info.Module().WWN).c_str(), wwn) == 0) {
      return true;
    }
  }
  PrintError("Unable to find desired array!\n");
  return false;
}

/// States in which a drive can be used.
bool IsUsable(std::uint32_t driveState) {
  return driveState == 0 || driveState == 2 || driveState == 3;
}

int CountUsableDrives(const RdacInfo& info, std::uint32_t lun, std::uint32_t controllerIndex) {
  int count = 0;
  for (std::uint32_t path = 0; path < info.MaxPaths(); ++path) {
    const RdacDrive& drive = *info.Drive(lun, controllerIndex, path);
    if (drive.HasDevice() && IsUsable(drive.DriveState)) {
      ++count;
    }
  }
  return count;
}

} // namespace

int ListControllerLunsRdac(const char* wwn, std::uint32_t controllerIndex) {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return 0;
  }
  if (!AskForLimits()) {
    return 0;
  }
  RdacInfoRequest request;
  if (!request.info.Allocate(gUtilMaxLuns, gUtilMaxPaths)) {
    PrintError("Unable to malloc memory for RdacInfo - %s!\n", RuntimeErrorText());
    return 0;
  }
  if (!FindModule(wwn, request)) {
    return 0;
  }
  for (std::uint32_t n = 0; n < request.info.MaxLuns(); ++n) {
    const RdacLun& lun = *request.info.Lun(n);
    if (!lun.HasWwn()) {
      continue;
    }
    const int count = CountUsableDrives(request.info, n, controllerIndex);
    if (count > 0) {
      PrintWwnBytes(lun.WWN);
      Print(",%d\n", count);
    }
  }
  return 1;
}

} // namespace korvex
