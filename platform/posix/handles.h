#pragma once

#include <cstdint>
#include <optional>

// The kinds of handle that CloseHandle closes.

namespace platform {

/// Closes the handle of a physical drive; false when it is none.
bool CloseDriveHandle(std::uintptr_t handle);

/// The same for a file: none when it is not one, else the code of closing it.
std::optional<std::uint32_t> CloseFileHandle(std::uintptr_t handle);

/// The same for a thread, which goes on.
bool CloseThreadHandle(std::uintptr_t handle);

} // namespace platform
