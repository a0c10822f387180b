#include "platform/devices.h"

#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/machine.h"

CONFIGRET CM_Locate_DevNode_ExW(DEVINST* node, DEVINSTID_W deviceId, ULONG flags, HMACHINE machine) {
  if (const auto fault = platform::FaultOf("CM_Locate_DevNode_ExW")) {
    return *fault;
  }
  if (node == nullptr) {
    return CR_INVALID_POINTER;
  }
  if (flags != CM_LOCATE_DEVNODE_NORMAL) {
    return CR_INVALID_FLAG;
  }
  if (machine != nullptr) {
    return CR_MACHINE_UNAVAILABLE;
  }
  if (deviceId != nullptr && *deviceId != L'\0') {
    return CR_NO_SUCH_DEVNODE;
  }
  const platform::ErrnoGuard guard;
  return platform::TheMachine().LocateDeviceTreeRoot(*node);
}

CONFIGRET CM_Reenumerate_DevNode_Ex(DEVINST node, ULONG flags, HMACHINE machine) {
  if (const auto fault = platform::FaultOf("CM_Reenumerate_DevNode_Ex")) {
    return *fault;
  }
  if (flags != 0) {
    return CR_INVALID_FLAG;
  }
  if (machine != nullptr) {
    return CR_MACHINE_UNAVAILABLE;
  }
  const platform::ErrnoGuard guard;
  return platform::TheMachine().ReenumerateDeviceNode(node);
}
