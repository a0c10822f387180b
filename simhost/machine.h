#pragma once

#include "platform/posix/machine.h"
#include "simhost/host.h"

#include <memory>

// The simulated host as the machine that the platform runs on.

namespace simhost {

/// A machine that the host is behind of. platform::MakeMachine makes the one of the process from the files beside the
/// executable: host.json (its description; without it a bare host), host.state.jsonl (what happened since) and, when it
/// is there at the start, host.audit, to which one line about leaks and calls is appended at the end of the process,
/// and host.registry, which then holds what the registry does.
std::unique_ptr<platform::Machine> MakeSimulatedMachine(std::shared_ptr<Host> host);

} // namespace simhost
