#pragma once

#include "app/inventory/rdac_info.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"

#include <cstdint>

namespace korvex {

/// Copies how a LUN (below the record's limit) is reached through its controllers from the DriveInfoList of the LUN's
/// element: blocks of `blockClass`, one per controller, each with a DriveInfoList of `driveClass`, one per path.
void ReadDriveInfos(OrbWmiEnumerator& lunElement, OrbWmiClass& blockClass, OrbWmiClass& driveClass,
                    RdacInfoRequest& request, std::uint32_t lunNumber);

} // namespace korvex
