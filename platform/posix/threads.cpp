#include "platform/threads.h"

#include "platform/error.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/handles.h"
#include "platform/posix/machine.h"

#include <exception>
#include <thread>

namespace {

/// Threads have nothing but their handles, and need none to go on.
struct OpenThread {};

platform::HandleTable<OpenThread>& OpenThreads() {
  static auto& threads = *new platform::HandleTable<OpenThread>;
  return threads;
}

HANDLE FailToStart(DWORD code) {
  SetLastError(code);
  return nullptr;
}

} // namespace

std::optional<std::uint32_t> platform::CloseThreadHandle(std::uintptr_t handle) {
  return OpenThreads().Find(handle) ? std::optional(CloseIn(OpenThreads(), handle, std::string_view())) : std::nullopt;
}

HANDLE CreateThread(void* /*security*/, std::size_t /*stackSize*/, LPTHREAD_START_ROUTINE start, LPVOID argument,
                    DWORD flags, DWORD* threadId) {
  const platform::ErrnoGuard guard;
  if (start == nullptr || flags != 0) {
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
  } catch (const std::exception&) {
    machine.EndThread(enlisted);
    return FailToStart(ERROR_NOT_ENOUGH_MEMORY);
  }
  const std::uintptr_t handle = OpenThreads().Add({});
  if (threadId != nullptr) {
    *threadId = static_cast<DWORD>(handle);
  }
  return reinterpret_cast<HANDLE>(handle); // NOLINT
}
