#pragma once

#include "platform/posix/machine.h"

#include <cstdint>
#include <optional>
#include <string_view>

// How the POSIX side asks the machine for a fault before it carries a call out.

namespace platform {

/// The code that `operation` on `target` gives instead of being carried out, if the machine says so. Cheap while no
/// fault is described; leaves errno alone. Gives none for the machine's own calls (see MachineCode).
std::optional<std::uint32_t> FaultOf(std::string_view operation, std::string_view target = {}) noexcept;

/// The same for a transfer of bytes.
TransferFault TransferFaultOf(std::string_view operation, std::string_view target) noexcept;

/// The same with a wide text as the target, handed to the machine in UTF-8.
std::optional<std::uint32_t> FaultOf(std::string_view operation, const wchar_t* target) noexcept;

} // namespace platform
