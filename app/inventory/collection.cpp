#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/owned_store.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/list_readers.h"
#include "app/inventory/methods_instance.h"
#include "app/inventory/path_information.h"
#include "platform/wbem.h"

// The composite request: asks the DSM for the selected arrays and, for a single one, for its controllers, LUNs and
// devices.

namespace korvex {

const CollectionOutputs* gCollectionOutputs = nullptr;

void ConnectCollection(const CollectionOutputs& outputs) {
  gCollectionOutputs = &outputs;
}

namespace {

/// One record of each kind as it comes in.
struct ReceiveBuffers {
  OwnedStore array;
  OwnedStore controller;
  OwnedStore lun;
  OwnedStore device;
};

/// False after a message.
bool AllocateReceiveBuffers(ReceiveBuffers& buffers) {
  buffers.array = MakeStore("dsmArrayInfoBuffer", kDsmArrayInfoCapacity);
  if (buffers.array == nullptr) {
    PrintError("Unable to malloc memory for dsmArrayInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  buffers.controller = MakeStore("dsmTpgInfoBuffer", kDsmTpgInfoCapacity);
  if (buffers.controller == nullptr) {
    PrintError("Unable to malloc memory for dsmTpgInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  buffers.lun = MakeStore("dsmMpgInfoBuffer", kDsmMpgInfoCapacity);
  if (buffers.lun == nullptr) {
    PrintError("Unable to malloc memory for dsmMpgInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  buffers.device = MakeStore("dsmDevInfoBuffer", kDsmDevInfoCapacity);
  if (buffers.device == nullptr) {
    PrintError("Unable to malloc memory for dsmDevInfoBuffer - %s!\n", RuntimeErrorText());
    return false;
  }
  return true;
}

/// The current array stands without controllers, LUNs and devices.
void ForgetParts() {
  gArrayControllerCount = 0;
  gArrayLunCount = 0;
  gDevInfoCount = 0;
}

/// Puts the selection's address into the holder that the answer comes back in.
bool Hold(const InputArgumentsRecord* selection, OrbWmiVariant& holder) {
  const std::uint64_t address = reinterpret_cast<std::uintptr_t>(selection);
  return holder.SetProperty(&address, sizeof(address), CIM_UINT64) == kWmiSuccess;
}

/// Sends one information request for the selection; the answer comes back in `holder`.
int SendForSelection(std::uint32_t requestCode, const InputArgumentsRecord* selection, OrbWmiVariant& holder) {
  return Hold(selection, holder) ? Ioctl(requestCode, &holder) : kIoctlFailed;
}

/// The same for a request of a status scan, which may take long.
int SendTimed(std::uint32_t requestCode, const InputArgumentsRecord* selection, OrbWmiVariant& holder) {
  const bool isHeld = gCollectionOutputs != nullptr && Hold(selection, holder);
  return isHeld ? gCollectionOutputs->timedIoctl(requestCode, &holder) : kIoctlFailed;
}

/// Fills the stores with the selected array's controllers, LUNs and devices; false after a failed request.
bool CollectArrayParts(const InputArgumentsRecord* selection, const ReceiveBuffers& buffers) {
  const bool storesExist = AllocateGen2Buffers();
  OrbWmiVariant controllers;
  OrbWmiVariant luns;
  OrbWmiVariant devices;
  const bool isSent = gStatusScanActive
                          ? SendTimed(request::kGetTpgInfoWithStatus, selection, controllers) != kIoctlFailed &&
                                SendForSelection(request::kGetMpgInfo, selection, luns) != kIoctlFailed &&
                                SendTimed(request::kGetDeviceInfoWithStatus, selection, devices) != kIoctlFailed
                          : SendForSelection(request::kGetTpgInfo, selection, controllers) != kIoctlFailed &&
                                SendForSelection(request::kGetMpgInfo, selection, luns) != kIoctlFailed &&
                                SendForSelection(request::kGetDeviceInfo, selection, devices) != kIoctlFailed;
  if (!isSent) {
    TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
    return false;
  }
  if (!storesExist) {
    ForgetParts();
    return true;
  }
  ReadTpgInfoList(controllers, buffers.controller.get());
  ReadMpgInfoList(luns, buffers.lun.get());
  ReadDevInfoList(devices, buffers.device.get());
  return true;
}

} // namespace

std::uint32_t CollectDsmArrayInfo(std::uint32_t /*requestCode*/, void* argument, OrbWmiVariant& /*output*/) {
  const auto* selection = static_cast<const InputArgumentsRecord*>(argument);
  // An array that cannot be read has no parts; those of an array before it are not its own.
  ForgetParts();
  ReceiveBuffers buffers;
  if (!AllocateReceiveBuffers(buffers)) {
    return kWmiOutOfMemory;
  }
  TracePrint("Init connection\n");
  wmiReturn status = kWmiSuccess;
  if (!ConnectChannel(&status) || !OpenMethodsInstance(&status)) {
    return status;
  }
  OrbWmiVariant arrays;
  if (SendForSelection(request::kGetArrayInfo, selection, arrays) != kIoctlSucceeded) {
    TracePrint("Unable to send ioctl request - %s!\n", RuntimeErrorText());
    return kWmiRequestFailed;
  }
  if (ReadArrayInfoList(arrays, buffers.array.get()) == 0) {
    return kWmiRequestFailed;
  }
  if (!gDetailMode) {
    return kWmiSuccess;
  }
  if (!CollectArrayParts(selection, buffers)) {
    return kWmiRequestFailed;
  }
  if (gReportSelectionErrors) {
    if (gExtendedReport) {
      ReadPathInformation();
    }
    gCollectionOutputs->printArrayInformation();
  }
  return kWmiSuccess;
}

} // namespace korvex
