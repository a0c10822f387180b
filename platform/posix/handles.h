#pragma once

#include "platform/error.h"
#include "platform/posix/faults.h"

#include <cstdint>
#include <optional>

// The kinds of handle that CloseHandle closes.

namespace platform {

/// Closes a handle of one kind: none when it is not open or of another kind, else 0 or the code of a described fault.
std::optional<std::uint32_t> CloseDriveHandle(std::uintptr_t handle);
std::optional<std::uint32_t> CloseFileHandle(std::uintptr_t handle);
/// The thread goes on.
std::optional<std::uint32_t> CloseThreadHandle(std::uintptr_t handle);

/// Closes an open handle of a table and gives the code; `target` is what faults know it by. A handle whose closing
/// fails is gone all the same, as nobody closes it again.
template <class Table, class Target>
std::uint32_t CloseIn(Table& table, std::uintptr_t handle, const Target& target) {
  const auto fault = FaultOf("CloseHandle", target);
  return table.Remove(handle) ? fault.value_or(ERROR_SUCCESS) : ERROR_INVALID_HANDLE;
}

} // namespace platform
