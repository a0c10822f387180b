#pragma once

#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_connection.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/wmi_return.h"

#include <cstdint>

// The one channel to the DSM, and which DSM it is.

namespace korvex {

/// The connection to root\WMI, the class opened last (normally the methods class) and an enumerator over its instances.
struct DsmChannel {
  OrbWmiConnection connection;
  OrbWmiClass methodsClass;
  OrbWmiEnumerator instances;
};

/// Made at start-up, empty, and kept for the whole run; none before.
extern DsmChannel* gDsmChannel;
/// The DSM service name in upper case, at most 10 characters.
extern char gRequestedDsm[11];
/// "<DSM>_MOF", cut to 10 characters; shown in trace lines only.
extern wchar_t gDsmMOFClassName[11];
/// Bytes 0 and 2 of the DSM's MofFileVersion value.
extern std::uint8_t gMofFileVersion[2];
/// Name of the DSM's methods class, at most 24 characters.
extern wchar_t gWmiMethodsName[25];
/// The DsmContext of the methods class's instance; 0 when it cannot be read.
extern std::uint64_t gRequestedDsmContext;

/// The driver version as VRXDSM_VERSION tells it; a field that could not be read is 0.
struct DsmVersion {
  std::uint32_t MajorVersion;
  std::uint32_t MinorVersion;
  std::uint32_t ProductBuild;
  std::uint32_t QfeNumber;
};
/// Allocated by utilGetDsmDriverVersion as a store, freed at the end of the run; none before and in generation 1.
extern DsmVersion* gDsmVersion;

/// The generation of the DSM's interface, 1 or 2, looked up afresh.
int InterfaceGeneration();

/// Starts COM, chooses the DSM and learns its interface generation; false ends the run.
bool StartChannel();

/// Reads the driver version, once after start-up in generation 2; 1 or 0.
int utilGetDsmDriverVersion();

/// Opens the channel for a group of requests and leaves it open; false after a message.
bool utilDetermineBusFd();

/// The two first steps of every opening: connects to root\WMI and sets its security; false after a message on standard
/// error. The layer's status goes to `statusOut`, unless it is none.
bool ConnectChannel(wmiReturn* statusOut = nullptr);

/// Opens the class gWmiMethodsName on the connected channel; false after a trace line. The layer's status goes to
/// `statusOut`, unless it is none.
bool OpenDsmMethodsClass(wmiReturn* statusOut = nullptr);

} // namespace korvex
