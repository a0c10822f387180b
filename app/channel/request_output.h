#pragma once

#include "wmi/orb_wmi_variant.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// What the method behind a request gives back.
enum class OutputKind { kNone, kNumber, kObject };
OutputKind RequestOutputKind(std::uint32_t requestCode);

/// Prepares the holder that a method's output is read into; 0, or kNothingToDo for a code without output.
wmiReturn UtilOutputParameter(std::uint32_t requestCode, OrbWmiVariant& output);

/// Hands a method's output to the caller: a number into the 32 bits at `argument`, an object into the holder there,
/// which is emptied first. `output` is none for a method without output. 0, kNothingToDo for a code without output and
/// for an object without holder, or the status of the step that failed (a null value gives 7).
wmiReturn UtilReturnParameter(std::uint32_t requestCode, OrbWmiVariant* output, void* argument);

} // namespace korvex
