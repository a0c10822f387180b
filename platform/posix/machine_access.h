#pragma once

#include <atomic>
#include <cstdint>

// What the POSIX side's own files share about the machine and the objects that it counts.

namespace platform {

class Machine;

/// The machine when it may have a fault for the calling code; none without described faults, inside the machine's own
/// code and while the machine is being made.
Machine* MachineWithFaults() noexcept;

/// Objects alive now, for CountLiveObjects.
inline std::atomic<std::uint64_t> gLiveBstrs{0};
inline std::atomic<std::uint64_t> gLiveSafeArrays{0};
inline std::atomic<std::uint64_t> gLiveHandles{0};

/// Handles given so far, of every kind.
inline std::atomic<std::uint64_t> gHandlesEver{0};

} // namespace platform
