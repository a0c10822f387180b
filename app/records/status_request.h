#pragma once

#include "app/records/status_info.h"

#include <cstdint>

namespace korvex {

/// Asks the DSM for the current status of the array read last, whose index this is, once more when it was in
/// transition; the record gets the answer. False when the array is to be left as it is.
bool RequestStatus(std::uint32_t index, UtilStatusInfo& record);

/// The largest numbers of LUNs and of paths to a controller that the array read last has, at least 256 and 4: the
/// limits of its record in interface generation 2.
std::uint32_t Gen2MaxLuns();
std::uint32_t Gen2MaxPaths();

/// Builds the record of the array read last from the generation-2 stores; one without LUNs has no status.
void utilFillGen2StatusInfo(UtilStatusInfo& record);

} // namespace korvex
