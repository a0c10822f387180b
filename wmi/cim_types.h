#pragma once

#include "platform/wbem.h"

#include <cstdint>
#include <optional>

namespace korvex {

/// CIM type of an array of embedded objects.
inline constexpr std::uint32_t kCimObjectArray = static_cast<std::uint32_t>(CIM_FLAG_ARRAY) | CIM_OBJECT;
inline constexpr VARTYPE kVtObjectArray = VT_ARRAY | VT_UNKNOWN;
inline constexpr VARTYPE kVtByteArray = VT_ARRAY | VT_UI1;

/// The VARTYPE that carries values of a CIM type; none for a CIM type that the layer does not know.
std::optional<VARTYPE> VartypeOfCimType(std::uint32_t cimType);

/// Whether two VARTYPEs keep values of one kind: numbers, texts, objects, arrays or nothing.
bool AreOfOneKind(VARTYPE left, VARTYPE right);

} // namespace korvex
