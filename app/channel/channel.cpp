#include "app/channel/channel.h"

#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "wmi/trace_text.h"
#include "wmi/wmi_return.h"

namespace korvex {

DsmChannel* gDsmChannel = nullptr;
char gRequestedDsm[11] = {};
wchar_t gDsmMOFClassName[11] = {};
std::uint8_t gMofFileVersion[2] = {};
wchar_t gWmiMethodsName[25] = {};
std::uint64_t gRequestedDsmContext = 0;

namespace {

bool Tell(wmiReturn status, wmiReturn* statusOut) {
  if (statusOut != nullptr) {
    *statusOut = status;
  }
  return status == kWmiSuccess;
}

} // namespace

bool ConnectChannel(wmiReturn* statusOut) {
  if (!Tell(gDsmChannel->connection.Initialize(L"root\\WMI"), statusOut)) {
    PrintError("Unable to initialize WMI connection.\n");
    return false;
  }
  if (!Tell(gDsmChannel->connection.SetSecurity(), statusOut)) {
    PrintError("Unable to set proxy blanket.\n");
    return false;
  }
  return true;
}

bool OpenDsmMethodsClass(wmiReturn* statusOut) {
  TracePrint("Class init\n");
  TracePrint("WMI_METHODS name '%s'\n", NarrowText(gWmiMethodsName).c_str());
  if (!Tell(gDsmChannel->methodsClass.Initialize(gDsmChannel->connection, gWmiMethodsName), statusOut)) {
    TracePrint("Unable to find %s class\n", NarrowText(gWmiMethodsName).c_str());
    return false;
  }
  return true;
}

bool utilDetermineBusFd() {
  TracePrint("Init connection\n");
  if (!ConnectChannel()) {
    return false;
  }
  if (!OpenDsmMethodsClass()) {
    PrintError("Bus connection failed.Det Bus FD\n");
    PrintError("Possible Cause: Array LUNs not configured or mapped to this host or this OEM DSM is not installed.\n");
    return false;
  }

  OrbWmiEnumerator& instances = gDsmChannel->instances;
  wmiReturn status = instances.Initialize(&gDsmChannel->methodsClass);
  if (status != kWmiSuccess) {
    TracePrint("utilDetermineBusFd: Unable to initialize OrbWmi enumerator. wmiReturn = %d\n",
               static_cast<int>(status));
    return false;
  }
  TracePrint("utilDetermineBusFd: Requested DSM '%s'\n", gRequestedDsm);
  status = instances.GetProperty(L"DsmContext", &gRequestedDsmContext, sizeof gRequestedDsmContext);
  if (status != kWmiSuccess) {
    gRequestedDsmContext = 0;
    TracePrint("utilDetermineBusFd: gRequestedDsmContext = 0. wmiReturn %d\n", static_cast<int>(status));
  }
  return true;
}

} // namespace korvex
