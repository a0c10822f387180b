#pragma once

#include "simhost/description.h"

#include <cstdint>
#include <memory>

// The host's clock.

namespace simhost {

/// Time in 100-nanosecond units since 1601-01-01 00:00:00 UTC. Every wait of the machine (the program's, the driver's,
/// a fault's delay) goes through here. Safe to use from several threads.
class Clock {
public:
  virtual ~Clock() = default;
  virtual std::uint64_t Now() = 0;
  virtual void Wait(std::uint32_t milliseconds) = 0;

  // Threads that a virtual clock lets run one at a time: enlisted before they are started, by the thread that starts
  // them, then begun and ended by themselves.
  virtual std::uint64_t EnlistThread() { return 0; }
  virtual void BeginThread(std::uint64_t /*thread*/) {}
  virtual void EndThread(std::uint64_t /*thread*/) {}
};

/// The system's own clock; waits are real.
std::unique_ptr<Clock> MakeRealClock();
/// A clock that tells one time for good; waits return as on a virtual clock.
std::unique_ptr<Clock> MakeFixedClock(std::uint64_t now);
/// A clock that only waits move. Threads run one at a time: whoever waits lets the one that wakes first go on, and of
/// those that wake together the one that fell asleep first.
std::unique_ptr<Clock> MakeVirtualClock(std::uint64_t now);

/// The clock that the description's "clock" describes; the real one when it is absent.
std::unique_ptr<Clock> ReadClock(const Node& clock);

} // namespace simhost
