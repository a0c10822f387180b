#include "platform/handles.h"
#include "platform/host.h"
#include "platform/posix/machine.h"
#include "platform/threads.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

// Threads over the machine's clock: a request that waits on one thread while a watcher ticks on another.

namespace {

struct Run {
  std::vector<std::string> events; ///< by whichever thread runs, without a lock: only one does
  std::atomic<bool> isAnswered{false};
  std::atomic<bool> hasEnded{false};

  void Note(const char* what) {
    SYSTEMTIME now;
    GetSystemTime(&now);
    events.push_back(what + std::to_string((now.wMinute * 60 + now.wSecond) * 1000 + now.wMilliseconds));
  }
};

DWORD WINAPI Watch(LPVOID argument) {
  auto& run = *static_cast<Run*>(argument);
  run.Note("watches at ");
  int ticks = 0;
  for (; ticks < 1700 && !run.isAnswered; ++ticks) {
    Sleep(100);
  }
  run.Note("ends at ");
  run.hasEnded = true;
  return static_cast<DWORD>(ticks);
}

/// What happens when the answer takes `delay` milliseconds on a host of that clock.
std::vector<std::string> EventsOf(const char* clock, DWORD delay) {
  auto before = platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(clock, "")));
  Run run;
  EXPECT_NE(CloseHandle(CreateThread(nullptr, 0, Watch, &run, 0, nullptr)), FALSE);
  run.Note("asks at ");
  Sleep(delay);
  run.Note("answers at ");
  run.isAnswered = true;
  while (!run.hasEnded) {
    Sleep(50);
  }
  platform::ReplaceMachine(std::move(before));
  return run.events;
}

TEST(Clock, LetsThreadsTakeTurnsInTheOrderOfWaking) {
  constexpr char kVirtual[] = R"({"clock": {"kind": "virtual", "now": "2026-01-01T00:00:00Z"}})";
  using Events = std::vector<std::string>;
  EXPECT_EQ(EventsOf(kVirtual, 250), (Events{"asks at 0", "watches at 0", "answers at 250", "ends at 300"}));
  // Of two that wake together the one goes first that fell asleep first.
  EXPECT_EQ(EventsOf(kVirtual, 100), (Events{"asks at 0", "watches at 0", "answers at 100", "ends at 100"}));
  EXPECT_EQ(EventsOf(kVirtual, 170'000), (Events{"asks at 0", "watches at 0", "answers at 170000", "ends at 170000"}));
  EXPECT_EQ(EventsOf(kVirtual, 170'001), (Events{"asks at 0", "watches at 0", "ends at 170000", "answers at 170001"}));
  constexpr char kFixed[] = R"({"clock": {"kind": "fixed", "now": "2026-01-01T00:00:07Z"}})";
  EXPECT_EQ(EventsOf(kFixed, 250), (Events{"asks at 7000", "watches at 7000", "answers at 7000", "ends at 7000"}));
}

} // namespace
