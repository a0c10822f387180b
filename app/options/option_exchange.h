#pragma once

#include "wmi/orb_wmi_variant.h"

#include <cstdint>

namespace korvex {

/// Callback of request 0x4D0C; the argument is the address of an OptionRequestRecord, whose header and details get the
/// DSM's answer. Details that the record has no room for are passed over. 0, or the status of the step that failed.
std::uint32_t SendOptionControlRequest(std::uint32_t requestCode, void* argument, OrbWmiVariant& output);

} // namespace korvex
