#include "app/channel/control_requests.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/numeric_input.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/devices.h"
#include "platform/host.h"

#include <cstring>

namespace korvex {
namespace {

/// How long the operating system is given to find the devices after the device tree was enumerated again.
constexpr DWORD kBusScanWaitMilliseconds = 5000;

int SetDebugLevel(std::uint32_t level) {
  TracePrint("Set debug level to 0x%x\n", static_cast<unsigned>(level));
  if (Ioctl(request::kSetDebugLevel, &level) == kIoctlFailed) {
    PrintError("Unable to send debug request - %s!\n", RuntimeErrorText());
    return 0;
  }
  return 1;
}

int SetErrorLevel(std::uint32_t level) {
  TracePrint("Set error level to %d\n", static_cast<int>(level));
  if (Ioctl(request::kSetErrorLevel, &level) == kIoctlFailed) {
    PrintError("Unable to send error request - %s!\n", RuntimeErrorText());
    return 0;
  }
  return 1;
}

/// Sends one of the two scan requests; 1 or 0.
int SendScanRequest(std::uint32_t requestCode) {
  TracePrint("Send scan request 0x%x\n", static_cast<unsigned>(requestCode));
  if (Ioctl(requestCode, nullptr) == kIoctlFailed) {
    PrintError("Unable to send ioctl request - %s!\n", RuntimeErrorText());
    return 0;
  }
  return 1;
}

int PerformForceRebalanceScan() {
  PrintError("Performing forcerebalance scan...\n");
  if (!utilDetermineBusFd()) {
    TracePrint("Unable to determine virtual bus!!\n");
    return -1;
  }
  return SendScanRequest(request::kPerformScan);
}

int PerformBusScan() {
  PrintError("Performing bus scan...\n");
  const int result = SendScanRequest(request::kReenumerateDeviceTree);
  if (result == 1) {
    FlushConsole();
    Sleep(kBusScanWaitMilliseconds);
  }
  return result;
}

} // namespace

int SetDriverLevel(DriverLevel level, const char* text) {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return -1;
  }
  const bool isDebugLevel = level == DriverLevel::kDebug;
  std::uint32_t value = 0;
  if (ParseNumericValue(text, isDebugLevel ? "DebugLevel" : "ErrorLevel", &value) == -1) {
    return -1;
  }
  return isDebugLevel ? SetDebugLevel(value) : SetErrorLevel(value);
}

int PerformScan(const char* text) {
  PrintError("\n");
  if (std::strcmp(text, "forcerebalance") == 0) {
    return PerformForceRebalanceScan();
  }
  if (std::strcmp(text, "busscan") == 0) {
    return PerformBusScan();
  }
  PrintError("Invalid option!\n");
  return -1;
}

std::uint32_t ReenumerateDeviceTree(std::uint32_t /*requestCode*/, void* /*argument*/, OrbWmiVariant& /*output*/) {
  DEVINST root = 0;
  if (CM_Locate_DevNode_ExW(&root, nullptr, 0, nullptr) != CR_SUCCESS) {
    return 1;
  }
  return CM_Reenumerate_DevNode_Ex(root, 0, nullptr) == CR_SUCCESS ? 0 : 1;
}

} // namespace korvex
