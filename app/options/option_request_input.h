#pragma once

#include "wmi/orb_wmi_variant.h"
#include "wmi/wmi_return.h"

namespace korvex {

/// Builds the input of request 0x4F03: a VRXDSM_OPTION_REQUEST object with its details becomes the held value. The
/// argument is a holder of an OptionRequestRecord's address. 0, or the status of the step that failed.
wmiReturn BuildOptionRequest(void* argument, OrbWmiVariant& input);

} // namespace korvex
