#include "app/records/timed_ioctl.h"

#include "app/channel/ioctl.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/host.h"
#include "platform/threads.h"

#include <atomic>

namespace korvex {

namespace {

/// What the requesting thread and the watcher tell each other.
enum WatchFlag : std::uint8_t { kRunning = 0, kFinished = 1, kFinishedLate = 3, kGivenUp = 4 };
using SharedFlag = std::atomic<std::uint8_t>;

constexpr DWORD kFirstWait = 25; ///< milliseconds
constexpr DWORD kTick = 100;     ///< milliseconds
constexpr DWORD kPoll = 50;      ///< milliseconds
constexpr int kTransitionTick = 20;
constexpr int kDotTicks = 20;
constexpr int kLastTick = 1700;

/// Watches one request until it has finished or took too long. The flag is not looked at again once it was set here.
DWORD WINAPI utilStatusWatcher(LPVOID argument) {
  SharedFlag& flag = *static_cast<SharedFlag*>(argument);
  Sleep(kFirstWait);
  if (flag != kRunning) {
    flag = kRunning;
    return 0;
  }
  bool isTransitionShown = false;
  bool isGivenUp = false;
  for (int tick = 1; flag == kRunning && !isGivenUp; ++tick) {
    Sleep(kTick);
    if (tick == kLastTick) {
      Print("\nArray status update did not complete in allotted time.\n");
      isGivenUp = true;
    } else if (tick == kTransitionTick && flag == kRunning) {
      Print("\nArray status in transition");
      isTransitionShown = true;
    }
    if (isTransitionShown && !isGivenUp && tick % kDotTicks == 0) {
      Print(".");
    }
    FlushConsole();
  }
  if (isGivenUp) {
    flag = kGivenUp;
  } else if (isTransitionShown) {
    Print(".\n\n");
    FlushConsole();
    flag = kFinishedLate;
  } else {
    flag = kRunning;
  }
  return 0;
}

bool StartWatcher(SharedFlag& flag) {
  HANDLE thread = CreateThread(nullptr, 0, &utilStatusWatcher, &flag, 0, nullptr);
  if (thread == nullptr) {
    TracePrint("Cread ioctl thread failed. error - %s\n", LastErrorText().c_str());
    return false;
  }
  CloseHandle(thread);
  return true;
}

/// Tells the watcher that the request has finished and waits for its last word.
void AwaitWatcher(SharedFlag& flag) {
  std::uint8_t expected = kRunning;
  if (!flag.compare_exchange_strong(expected, kFinished)) {
    return;
  }
  while (flag == kFinished) {
    Sleep(kPoll);
  }
}

} // namespace

int utilTimedIoctl(std::uint32_t requestCode, void* argument) {
  SharedFlag flag = kRunning;
  FlushConsole();
  const bool isWatched = StartWatcher(flag);
  const int result = Ioctl(requestCode, argument);
  if (isWatched) {
    AwaitWatcher(flag);
  }
  if (result == kIoctlSucceeded) {
    return flag == kFinishedLate || flag == kGivenUp ? 3 : 0;
  }
  if (result == 0) {
    return flag == kGivenUp ? 4 : -1;
  }
  return -1;
}

} // namespace korvex
