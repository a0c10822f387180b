#pragma once

#include "wmi/wmi_return.h"

namespace korvex {

/// Opens the DSM's methods class and its instance on the connected channel and reads gRequestedDsmContext, 0 when it
/// cannot be read. False, after a trace line, when the class cannot be opened; the layer's status of that goes to
/// `statusOut`, unless it is none.
bool OpenMethodsInstance(wmiReturn* statusOut = nullptr);

} // namespace korvex
