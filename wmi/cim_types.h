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

/// Whether two VARTYPEs keep values of one kind (numbers, texts, objects, nothing, arrays of the same elements), so
/// that a value of the one can be taken as the other.
bool AreOfOneKind(VARTYPE left, VARTYPE right);

/// Whether an array has one dimension and at least `count` elements of the kind and size of `elementType` (VT_UI1 or
/// VT_UNKNOWN), whatever the VARIANT around it says. An array that does not tell its elements' type is believed.
bool IsArrayOf(SAFEARRAY* array, VARTYPE elementType, std::int64_t count);

} // namespace korvex
