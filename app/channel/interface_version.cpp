#include "app/channel/interface_version.h"

#include "app/channel/channel.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "wmi/trace_text.h"
#include "wmi/wmi_return.h"

namespace korvex {
namespace {

/// The class that tells the version, whatever the DSM's name.
constexpr wchar_t kVersionClassName[] = L"VRXDSM_MOF";

/// Opens the version class in the channel. `isAbsent` tells that the DSM does not publish it, or that asking for it
/// failed.
bool OpenVersionClass(bool& isAbsent) {
  TracePrint("Class init\n");
  TracePrint("gDsmMOFClassName name '%s'\n", NarrowText(gDsmMOFClassName).c_str());
  TracePrint("localDsmMOFVersionFileName name '%s used to gather MOF version'\n",
             NarrowText(kVersionClassName).c_str());
  const wmiReturn status = gDsmChannel->methodsClass.Initialize(gDsmChannel->connection, kVersionClassName);
  isAbsent = status == kWmiRequestFailed || status == kWmiClassNotFound;
  if (status != kWmiSuccess && !isAbsent) {
    PrintError("Bus connection failed.error getting MOF file version,wmiReturn=%d \n", static_cast<int>(status));
    PrintError("Possible Cause: Array LUNs not configured or mapped to this host.\n");
  }
  return status == kWmiSuccess;
}

/// Reads the version from the first instance of the opened class.
bool ReadVersionProperty() {
  // Without an instance the property cannot be read, so the enumerator's own status says nothing more.
  gDsmChannel->instances.Initialize(&gDsmChannel->methodsClass);
  TracePrint("Requested DSM '%s'\n", gRequestedDsm);
  std::uint8_t version[20] = {};
  if (gDsmChannel->instances.GetProperty(L"MofFileVersion", version, sizeof version) != kWmiSuccess) {
    return false;
  }
  gMofFileVersion[0] = version[0];
  gMofFileVersion[1] = version[2];
  return true;
}

bool ReadVersion() {
  bool isAbsent = false;
  if (OpenVersionClass(isAbsent)) {
    return ReadVersionProperty();
  }
  if (isAbsent) {
    gMofFileVersion[0] = 1;
    gMofFileVersion[1] = 0;
  }
  return isAbsent;
}

} // namespace

int InterfaceGeneration() {
  return gMofFileVersion[0] == '2' && gMofFileVersion[1] == '0' ? 2 : 1;
}

bool ReadInterfaceVersion() {
  const bool isKnown = ConnectChannel() && ReadVersion();
  gDsmChannel->connection.CloseConnection();
  return isKnown;
}

} // namespace korvex
