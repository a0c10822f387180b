#pragma once

#include "platform/wbem.h"
#include "wmi/wmi_return.h"

namespace korvex {

/// The status of a WMI call that failed with `result`, or that succeeded without giving what it was called for.
constexpr wmiReturn StatusOfFailure(HRESULT result) {
  return result == WBEM_E_ACCESS_DENIED ? kWmiAccessDenied : kWmiRequestFailed;
}

/// Whether a method's failure can be what its provider answers to the arguments. Other failures (rights, memory, the
/// service or the provider out of reach) tell nothing about what was asked for.
constexpr bool IsAnswerOfProvider(HRESULT result) {
  return result == WBEM_E_FAILED || result == WBEM_E_NOT_FOUND || result == WBEM_E_INVALID_PARAMETER ||
         result == WBEM_E_INVALID_METHOD_PARAMETERS;
}

} // namespace korvex
