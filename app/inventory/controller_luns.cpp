#include "app/cli/console/print.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/gen2_records.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/wwn_text.h"

#include <algorithm>
#include <optional>

namespace korvex {

namespace {

std::optional<TpgControllerRecord> FindController(std::uint32_t controllerIndex) {
  for (std::uint32_t k = 0; k < gArrayControllerCount; ++k) {
    const TpgControllerRecord controller = StoredController(k);
    if (controller.designation == controllerIndex) {
      return controller;
    }
  }
  return std::nullopt;
}

/// The LUN's path entries in use that run through the controller.
std::ptrdiff_t CountSharedPaths(const MpgDeviceRecord& lun, const TpgControllerRecord& controller) {
  return std::ranges::count_if(lun.PathsInUse(), [&controller](const MpgPathEntry& lunPath) {
    return std::ranges::any_of(controller.PathsInUse(), [&lunPath](const TpgPathEntry& path) {
      return path.pathId == lunPath.pathId && path.pathIdExtension == lunPath.pathIdExtension;
    });
  });
}

} // namespace

void ListControllerLuns(std::uint32_t controllerIndex) {
  if (GetDsmArrayInfo() != 1) {
    PrintError("Unable to find desired Array!\n");
    return;
  }
  const std::optional<TpgControllerRecord> controller = FindController(controllerIndex);
  if (!controller) {
    PrintError("Unable to find desired Controller!\n");
    return;
  }
  for (std::uint32_t n = 0; n < gArrayLunCount; ++n) {
    const MpgDeviceRecord lun = StoredLun(n);
    const auto paths = static_cast<int>(CountSharedPaths(lun, *controller));
    if (paths > 0) {
      PrintWwnCharacters(lun.wwn);
      Print(",%d\n", paths);
    }
  }
}

} // namespace korvex
