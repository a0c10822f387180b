#pragma once

#include <cstdint>

// The kinds of handle that CloseHandle closes.

namespace platform {

/// Closes the handle of a physical drive; false when it is none.
bool CloseDriveHandle(std::uintptr_t handle);

} // namespace platform
