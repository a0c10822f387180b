#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"
#include "wmi/wmi_return.h"

namespace korvex {

DsmVersion* gDsmVersion = nullptr;

namespace {

/// Opens the methods class's instances and takes the DSM's context from them.
bool OpenInstances() {
  OrbWmiEnumerator& instances = gDsmChannel->instances;
  wmiReturn status = instances.Initialize(&gDsmChannel->methodsClass);
  if (status != kWmiSuccess) {
    TracePrint("utilGetDsmDriverVersion: Unable to initialize OrbWmi enumerator. wmiReturn = %d\n",
               static_cast<int>(status));
    return false;
  }
  TracePrint("utilGetDsmDriverVersion: Requested DSM '%s'\n", gRequestedDsm);
  status = instances.GetProperty(L"DsmContext", &gRequestedDsmContext, sizeof gRequestedDsmContext);
  if (status != kWmiSuccess) {
    TracePrint("utilGetDsmDriverVersion: Get Requested DSM '%s' failed status %d\n", gRequestedDsm,
               static_cast<int>(status));
    gRequestedDsmContext = 0;
  }
  return true;
}

/// One number of the version, 0 when it cannot be read.
std::uint32_t VersionField(OrbWmiEnumerator& version, const wchar_t* name) {
  std::uint32_t field = 0;
  return version.GetProperty(name, &field, sizeof field) == kWmiSuccess ? field : 0;
}

/// Asks the DSM for its version and keeps the answer in gDsmVersion.
void RequestVersion() {
  OrbWmiVariant answer;
  Ioctl(request::kGetDriverVersion, &answer);

  OrbWmiClass versionClass;
  if (versionClass.Initialize(gDsmChannel->connection, L"VRXDSM_VERSION") != kWmiSuccess) {
    TracePrint("Error initializing DSM_VERSION class\n");
    return;
  }
  OrbWmiEnumerator version;
  if (version.Initialize(&versionClass, &answer) != kWmiSuccess) {
    TracePrint("Error initializing versionClass enum\n");
    return;
  }
  gDsmVersion->MajorVersion = VersionField(version, L"MajorVersion");
  gDsmVersion->MinorVersion = VersionField(version, L"MinorVersion");
  gDsmVersion->ProductBuild = VersionField(version, L"ProductBuild");
  gDsmVersion->QfeNumber = VersionField(version, L"QfeNumber");
}

} // namespace

int utilGetDsmDriverVersion() {
  if (gDsmVersion == nullptr) {
    gDsmVersion = static_cast<DsmVersion*>(platform::AllocateStore("gDsmVersion", sizeof(DsmVersion)));
  }
  if (gDsmVersion == nullptr) {
    PrintError("Unable to malloc memory for gDsmVersion - %s!\n", RuntimeErrorText());
    return 0;
  }
  TracePrint("Init connection\n");
  if (!ConnectChannel()) {
    return 0;
  }
  if (!OpenDsmMethodsClass()) {
    gDsmChannel->connection.CloseConnection();
    return 0;
  }
  if (!OpenInstances()) {
    return 0;
  }
  RequestVersion();
  gDsmChannel->connection.CloseConnection();
  return 1;
}

} // namespace korvex
