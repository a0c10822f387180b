#include "app/inventory/gen2_inventory.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen2_records.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/inventory/methods_instance.h"
#include "platform/allocation.h"

#include <algorithm>

namespace korvex {

namespace {

/// The selection that the front end has made, as the DSM takes it.
InputArgumentsRecord SelectionRecord() {
  InputArgumentsRecord record{};
  record.argType = gSelectionMode;
  if (gSelectionMode == kByArrayId) {
    record.argID = gSelectedArrayId;
  }
  if (gSelectionMode == kByWwn) {
    std::copy_n(gSelectionWwn, sizeof(gSelectionWwn), record.argWWN);
  }
  return record;
}

} // namespace

int GetCurrentNumberOfArrays(MethodOutcome* outcome) {
  TracePrint("Init connection\n");
  if (!ConnectChannel()) {
    return 0;
  }
  const bool isFound = OpenMethodsInstance();
  if (isFound && Ioctl(request::kGetCurrentNumberOfArrays, &gNumberOfArrays, outcome) == kIoctlFailed) {
    PrintError("Unable to get the current number of Arrays - %s!\n", RuntimeErrorText());
  }
  gDsmChannel->connection.CloseConnection();
  return isFound ? 1 : 0;
}

int GetDsmArrayInfo() {
  if (gModuleName == nullptr || gModuleWWN == nullptr) {
    const int initialized = InitModuleArrays();
    if (initialized != 1) {
      TracePrint("failure in initialization of Module Array.\n");
      return initialized;
    }
  }
  gUtilMaxPaths = kPathEntries;
  if (gInterfaceTypes == nullptr) {
    gInterfaceTypes = static_cast<unsigned char*>(platform::AllocateStore("gInterfaceTypes", kInterfaceTypesCapacity));
    if (gInterfaceTypes == nullptr) {
      TracePrint("Could not allocate memory for interface type array.\n");
      return 0;
    }
  }
  InputArgumentsRecord selection = SelectionRecord();
  const int result = Ioctl(request::kCollectDsmArrayInfo, &selection);
  if (result == kIoctlFailed && gReportSelectionErrors) {
    PrintError("Unable to get the DSM ArrayInfo request. Verify input arguments.\n");
  }
  return result;
}

} // namespace korvex
