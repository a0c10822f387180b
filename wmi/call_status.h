#pragma once

#include "platform/wbem.h"
#include "wmi/wmi_return.h"

namespace korvex {

/// The status of a WMI call that failed with `result`, or that succeeded without giving what it was called for.
constexpr wmiReturn StatusOfFailure(HRESULT result) {
  return result == WBEM_E_ACCESS_DENIED ? kWmiAccessDenied : kWmiRequestFailed;
}

} // namespace korvex
