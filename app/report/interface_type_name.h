#pragma once

#include <cstdint>

namespace korvex {

/// The name of an interface-type code: static text, "unknown" for a code without a name.
const char* InterfaceTypeName(std::uint8_t code);

} // namespace korvex
