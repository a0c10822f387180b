#pragma once

#include "wmi/orb_wmi_variant.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// Builds a method's input in `input` from the caller's argument, whose form depends on the code. 0, kNothingToDo for a
/// code without input, or the status of the step that failed.
wmiReturn UtilInputParameter(std::uint32_t requestCode, void* argument, OrbWmiVariant& input);

} // namespace korvex
