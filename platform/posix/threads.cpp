#include "platform/threads.h"

#include "platform/error.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/handles.h"
#include "platform/posix/machine.h"

#include <system_error>
#include <thread>

namespace {

/// Threads by handle; a thread needs none to go on.
platform::HandleTable<DWORD>& OpenThreads() {
  static auto& threads = *new platform::HandleTable<DWORD>;
  return threads;
}

HANDLE FailToStart(DWORD code) {
  SetLastError(code);
  return nullptr;
}

} // namespace

bool platform::CloseThreadHandle(std::uintptr_t handle) {
  return OpenThreads().Remove(handle);
}

HANDLE CreateThread(void* /*security*/, std::size_t /*stackSize*/, LPTHREAD_START_ROUTINE start, LPVOID argument,
                    DWORD /*flags*/, DWORD* threadId) {
  const platform::ErrnoGuard guard;
  if (start == nullptr) {
    return FailToStart(ERROR_INVALID_PARAMETER);
  }
  if (const auto fault = platform::FaultOf("CreateThread")) {
    return FailToStart(*fault);
  }
  platform::Machine& machine = platform::TheMachine();
  const std::uint64_t enlisted = machine.EnlistThread();
  try {
    std::thread([&machine, enlisted, start, argument] {
      machine.BeginThread(enlisted);
      start(argument);
      machine.EndThread(enlisted);
    }).detach();
  } catch (const std::system_error&) {
    machine.EndThread(enlisted);
    return FailToStart(ERROR_NOT_ENOUGH_MEMORY);
  }
  const auto id = static_cast<DWORD>(enlisted);
  if (threadId != nullptr) {
    *threadId = id;
  }
  return reinterpret_cast<HANDLE>(OpenThreads().Add(id)); // NOLINT
}
