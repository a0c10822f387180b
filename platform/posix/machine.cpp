#include "platform/posix/machine.h"

#include "platform/posix/errno_guard.h"
#include "platform/posix/machine_access.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace platform {

namespace {

std::mutex gMachineMutex;
/// Owned; a bare pointer because the machine outlives every object of static life.
std::atomic<Machine*> gMachine{nullptr};
thread_local bool gMakingMachine = false;
thread_local unsigned gMachineCodeDepth = 0;

Machine* MakeTheMachine() {
  const std::scoped_lock lock(gMachineMutex);
  Machine* machine = gMachine.load(std::memory_order_acquire);
  if (machine == nullptr) {
    const ErrnoGuard guard;
    gMakingMachine = true;
    machine = MakeMachine().release();
    gMakingMachine = false;
    gMachine.store(machine, std::memory_order_release);
  }
  return machine;
}

} // namespace

Machine& TheMachine() {
  Machine* machine = gMachine.load(std::memory_order_acquire);
  if (machine == nullptr) {
    if (gMakingMachine) {
      std::fputs("the machine was used while it was being made\n", stderr);
      std::abort();
    }
    machine = MakeTheMachine();
  }
  return *machine;
}

std::unique_ptr<Machine> ReplaceMachine(std::unique_ptr<Machine> machine) {
  const std::scoped_lock lock(gMachineMutex);
  return std::unique_ptr<Machine>(gMachine.exchange(machine.release(), std::memory_order_acq_rel));
}

Machine* MachineWithFaults() noexcept {
  if (gMachineCodeDepth != 0 || gMakingMachine) {
    return nullptr;
  }
  Machine& machine = TheMachine();
  return machine.HasFaults() ? &machine : nullptr;
}

MachineCode::MachineCode() noexcept {
  ++gMachineCodeDepth;
}
MachineCode::~MachineCode() {
  --gMachineCodeDepth;
}

std::filesystem::path ExecutableDirectory() {
  const ErrnoGuard guard;
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

LiveObjects CountLiveObjects() {
  return {gLiveBstrs.load(std::memory_order_relaxed), gLiveSafeArrays.load(std::memory_order_relaxed),
          gLiveHandles.load(std::memory_order_relaxed)};
}

} // namespace platform
