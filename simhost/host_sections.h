#pragma once

#include "simhost/description.h"
#include "simhost/host.h"

// The top-level keys of the description that stand in files of their own.

namespace simhost {

/// "dsms": the installed DSMs.
void BuildDrivers(const Node& dsms, Host& host);
/// "interfaceVersion": the version class of the driver interface, once for the host.
void BuildInterfaceVersion(const Node& version, Host& host);
/// "disks": the machine's disks.
void BuildDisks(const Node& disks, Host& host);
/// "mpio": the MPIO framework.
void BuildFramework(const Node& mpio, Host& host);

/// "registry": keys and values beside the service keys of the DSMs.
void BuildRegistry(const Node& registry, Host& host);

} // namespace simhost
