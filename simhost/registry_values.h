#pragma once

#include "platform/posix/machine.h"
#include "simhost/description.h"

// Registry values as the description, the state and listings show them.

namespace simhost {

/// Reads a value: a number (REG_DWORD), a text (REG_SZ), or an object of "type" (a name or a number) and "bytes".
platform::RegistryValue ReadRegistryValue(const Node& value);

/// The opposite: numbers and texts wherever the data are just that.
Json WriteRegistryValue(const platform::RegistryValue& value);

} // namespace simhost
