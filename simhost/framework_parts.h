#pragma once

#include "simhost/description.h"
#include "simhost/host.h"

// The parts of the MPIO framework that stand in files of their own.

namespace simhost {

/// The key that the framework's instances have.
inline constexpr wchar_t kFrameworkInstance[] = L"ROOT\\MPIO\\0000_0";

/// The DSMs that the framework knows with their timing counters, and the method that sets them: MPIO_REGISTERED_DSM and
/// MPIO_WMI_METHODS.
void AddRegisteredDsms(const Node& dsms, Host& host);

/// The framework's multipath disks: MPIO_DISK_INFO.
void AddFrameworkDrives(const Node& drives, Host& host);

} // namespace simhost
