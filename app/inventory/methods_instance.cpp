#include "app/inventory/methods_instance.h"

#include "app/channel/channel.h"
#include "app/cli/console/trace.h"

namespace korvex {

bool OpenMethodsInstance(wmiReturn* statusOut) {
  if (!OpenDsmMethodsClass(statusOut)) {
    return false;
  }
  // Without an instance reading the context fails here, and so do the requests that follow.
  gDsmChannel->instances.Initialize(&gDsmChannel->methodsClass);
  TracePrint("Requested DSM '%s'\n", gRequestedDsm);
  if (gDsmChannel->instances.GetProperty(L"DsmContext", &gRequestedDsmContext, sizeof(gRequestedDsmContext)) !=
      kWmiSuccess) {
    gRequestedDsmContext = 0;
  }
  return true;
}

} // namespace korvex
