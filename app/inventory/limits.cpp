#include "app/inventory/limits.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"

#include <algorithm>
#include <cwchar>

namespace korvex {

std::uint32_t gUtilMaxLuns = kUnknownLimit;
std::uint32_t gUtilMaxPaths = kUnknownLimit;
std::uint32_t MaxArrayModules = kUnknownLimit;
char* gModuleName = nullptr;
std::uint8_t* gModuleWWN = nullptr;

namespace {

bool gArrayCountFailed = false;
/// The methods class of the DSM that MaxArrayModules comes from.
wchar_t gCountedMethodsName[25] = {};

} // namespace

bool AskForArrayCount() {
  const std::uint32_t code =
      InterfaceGeneration() == 2 ? request::kGetCurrentNumberOfArrays : request::kGetMaxModulesSupported;
  MethodOutcome outcome = MethodOutcome::kUnknown;
  const bool isGiven = Ioctl(code, &MaxArrayModules, &outcome) != kIoctlFailed;
  gArrayCountFailed = !isGiven || outcome != MethodOutcome::kAnswered;
  if (isGiven) {
    std::ranges::copy(gWmiMethodsName, gCountedMethodsName);
  }
  return isGiven;
}

bool IsArrayCountTold() {
  return (MaxArrayModules != 0 || !gArrayCountFailed) && std::wcscmp(gWmiMethodsName, gCountedMethodsName) == 0;
}

void ForgetLimits() {
  gUtilMaxLuns = kUnknownLimit;
  gUtilMaxPaths = kUnknownLimit;
  MaxArrayModules = kUnknownLimit;
  gArrayCountFailed = false;
}

int GetMaxArrayModules() {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return -1;
  }
  if (MaxArrayModules != kUnknownLimit) {
    return 1;
  }
  TracePrint("sending ioctl for maxArrayModules \n");
  if (!AskForArrayCount()) {
    PrintError("Unable to get max Array modules request - %s!\n", RuntimeErrorText());
    MaxArrayModules = 0;
    return 0;
  }
  return 1;
}

int InitModuleArrays() {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return -1;
  }
  if (MaxArrayModules == kUnknownLimit) {
    const int asked = GetMaxArrayModules();
    TracePrint("MaxArrayModules = %d \n", static_cast<int>(MaxArrayModules));
    if (asked == -1) {
      return -1;
    }
  }
  const std::uint64_t slots = std::max<std::uint64_t>(MaxArrayModules, 1);
  if (gModuleName == nullptr) {
    gModuleName = static_cast<char*>(platform::AllocateStore("gModuleName", slots * kModuleNameSlot));
    if (gModuleName == nullptr) {
      PrintError("Unable to malloc memory for gModuleName array - %s!\n", RuntimeErrorText());
      return 0;
    }
  }
  if (gModuleWWN == nullptr) {
    gModuleWWN = static_cast<std::uint8_t*>(platform::AllocateStore("gModuleWWN", slots * kModuleWwnSlot));
    if (gModuleWWN == nullptr) {
      PrintError("Unable to malloc memory for gModuleWWN array - %s!\n", RuntimeErrorText());
      return 0;
    }
  }
  return 1;
}

} // namespace korvex
