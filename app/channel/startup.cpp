#include "app/channel/channel.h"
#include "app/channel/dsm_name.h"
#include "app/channel/interface_version.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"
#include "wmi/orb_wmi_common.h"
#include "wmi/trace_text.h"

namespace korvex {
namespace {

/// COM and the process's security; false when the security is refused.
bool StartWmiClient() {
  if (OrbWmiCommon::Initialize() != kWmiSuccess) {
    // COM may have been started before, so this alone stops nothing.
    TracePrint("Library init failed\n");
  }
  if (OrbWmiCommon::InitializeSecurity() != kWmiSuccess) {
    TracePrint("Security init failed\n");
    return false;
  }
  return true;
}

} // namespace

bool StartChannel() {
  if (gDsmChannel == nullptr) {
    gDsmChannel = platform::NewObject<DsmChannel>("gDsmChannel");
  }
  if (gDsmChannel == nullptr || !StartWmiClient()) {
    return false;
  }

  char name[kDsmNameSize];
  if (!ChooseDsmName(name)) {
    return false;
  }
  SetRequestedDsm(name);
  TracePrint("Requested DSM '%s'\n", gRequestedDsm);
  FormMofClassName();
  TracePrint("Default OEMDSM_MOF '%s';'%s'\n", gRequestedDsm, NarrowText(gDsmMOFClassName).c_str());

  if (!ReadInterfaceVersion()) {
    PrintError("Getting the MOF file version failed\n");
    return false;
  }
  FormMethodsClassName();
  if (InterfaceGeneration() == 2) {
    TracePrint("Default WMI_METHODS_NAME_V2 '%s';'%s'\n", gRequestedDsm, NarrowText(gWmiMethodsName).c_str());
  } else {
    TracePrint("Default WMI_METHODS_NAME '%s';'%s'\n", gRequestedDsm, NarrowText(gWmiMethodsName).c_str());
  }
  TracePrint("Init succeeded\n");
  return true;
}

} // namespace korvex
