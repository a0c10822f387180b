#include "app/cli/console/run_state.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/records/status_request.h"

#include <algorithm>
#include <cstring>

// A status record built from what a generation-2 collection has stored.

namespace korvex {

namespace {

constexpr std::uint32_t kLeastMaxLuns = 256;
constexpr std::uint32_t kLeastMaxPaths = 4;
constexpr std::uint8_t kNoController = 255;

/// The code of a controller record's state byte.
std::uint8_t ControllerCode(std::uint8_t state) {
  if (state == 1 || state == 2) {
    return kControllerActive;
  }
  return state == 4 ? kControllerReset : kControllerUnknown;
}

void FillControllers(UtilStatusInfo& record) {
  for (std::uint32_t index = 0; index < std::min(gArrayControllerCount, UtilStatusInfo::kControllers); ++index) {
    const TpgControllerRecord controller = StoredController(index);
    if (controller.designation < UtilStatusInfo::kControllers) {
      record.SetControllerState(controller.designation, ControllerCode(controller.state));
    }
  }
}

/// Puts a path into the first free place; without one it is dropped.
void AddPath(UtilStatusInfo& record, const DeviceInfoRecord& device) {
  const std::uint32_t controller = device.controller == 0 ? 0 : 1;
  for (std::uint32_t index = 0; index < record.MaxPaths(); ++index) {
    if (!record.Path(device.lun, controller, index).Exists()) {
      record.SetPath(device.lun, controller, index, {device.port, device.path, device.target, device.pathState});
      return;
    }
  }
}

void FillPaths(UtilStatusInfo& record) {
  for (std::uint32_t index = 0; index < gDevInfoCount; ++index) {
    const DeviceInfoRecord device = StoredDevice(index);
    if (device.lun >= record.MaxLuns()) {
      return;
    }
    if (record.IsEmpty(device.lun)) {
      record.SetLunNumber(device.lun, device.lun);
    }
    if (device.controller != kNoController) {
      AddPath(record, device);
    }
  }
}

} // namespace

std::uint32_t Gen2MaxLuns() {
  return std::max(gArrayLunCount, kLeastMaxLuns);
}

std::uint32_t Gen2MaxPaths() {
  std::uint32_t maxPaths = kLeastMaxPaths;
  for (std::uint32_t index = 0; index < gArrayControllerCount; ++index) {
    maxPaths = std::max(maxPaths, static_cast<std::uint32_t>(StoredController(index).PathsInUse().size()));
  }
  return maxPaths;
}

void utilFillGen2StatusInfo(UtilStatusInfo& record) {
  record.MakeFresh();
  if (gArrayLunCount == 0) {
    return;
  }
  std::memcpy(record.Name().data(), gModuleName, strnlen(gModuleName, UtilStatusInfo::kNameLength));
  record.SetArrayIndex(gSelectedArrayId);
  FillControllers(record);
  FillPaths(record);
}

} // namespace korvex
