#include "app/channel/channel.h"
#include "app/channel/dsm_name.h"
#include "app/channel/dsm_selection.h"
#include "app/channel/interface_version.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "wmi/trace_text.h"

#include <cstring>

namespace korvex {
namespace {

/// Makes the DSM of this name the one that the run talks to, and that later runs begin with.
int ChangeDsm(const char* name) {
  if (std::strstr(name, "dsm") == nullptr) {
    PrintError("enter valid oem dsm name in the format oemdsm \n");
    return 0;
  }
  RememberDsmName(name);
  TracePrint("RequestedDsm('%s')\n", name);
  SetRequestedDsm(name);
  TracePrint("translated RequestedDsm('%s')\n", gRequestedDsm);
  FormMofClassName();
  TracePrint("Requested OEMDSM_MOF '%s';'%s'\n", gRequestedDsm, NarrowText(gDsmMOFClassName).c_str());

  if (!ReadInterfaceVersion()) {
    PrintError("Getting the MOF file version failed\n");
    return 0;
  }
  FormMethodsClassName();
  TracePrint("Default WMI_METHODS_NAME to be used '%s';'%s'\n", gRequestedDsm, NarrowText(gWmiMethodsName).c_str());
  ++gOptionIndex;
  return 1;
}

} // namespace

int HandleDsmOption(int wordCount, char** words) {
  const char* word = gOptionIndex < wordCount ? words[gOptionIndex] : nullptr;
  if (word == nullptr || word[0] == '-') {
    ListInstalledDsms();
    return 1;
  }
  return ChangeDsm(word);
}

} // namespace korvex
