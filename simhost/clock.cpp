#include "simhost/clock.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace simhost {

namespace {

constexpr std::uint64_t kTicksPerSecond = 10'000'000;
constexpr std::uint64_t kTicksPerMillisecond = 10'000;
/// Seconds from 1601-01-01 to 1970-01-01.
constexpr std::uint64_t kSecondsTo1970 = 11'644'473'600;

constexpr std::string_view kDefaultNow = "2026-01-01T00:00:00Z";

class RealClock : public Clock {
public:
  std::uint64_t Now() override {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto since1970 = std::chrono::duration_cast<Ticks>(std::chrono::system_clock::now().time_since_epoch());
    return static_cast<std::uint64_t>(since1970.count()) + kSecondsTo1970 * kTicksPerSecond;
  }
  void Wait(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
};

/// The number of the calling thread; 0 for the one that was not enlisted.
thread_local std::uint64_t tThread = 0;

class VirtualClock : public Clock {
public:
  explicit VirtualClock(std::uint64_t now) : m_now(now) {}

  std::uint64_t Now() override {
    const std::scoped_lock lock(m_lock);
    return m_now;
  }
  void Wait(std::uint32_t milliseconds) override {
    std::unique_lock lock(m_lock);
    m_sleepers.push_back({m_now + milliseconds * kTicksPerMillisecond, tThread});
    WakeNext();
    m_turnChanged.wait(lock, [this] { return m_turn == tThread; });
  }
  std::uint64_t EnlistThread() override {
    const std::scoped_lock lock(m_lock);
    const std::uint64_t thread = ++m_enlisted;
    m_sleepers.push_back({m_now, thread});
    return thread;
  }
  void BeginThread(std::uint64_t thread) override {
    tThread = thread;
    std::unique_lock lock(m_lock);
    m_turnChanged.wait(lock, [this] { return m_turn == tThread; });
  }
  void EndThread(std::uint64_t thread) override {
    const std::scoped_lock lock(m_lock);
    std::erase_if(m_sleepers, [thread](const Sleeper& sleeper) { return sleeper.thread == thread; });
    if (m_turn == thread && !m_sleepers.empty()) {
      WakeNext();
    }
  }

private:
  struct Sleeper {
    std::uint64_t wakes;
    std::uint64_t thread;
  };

  /// Gives the turn to the first that wakes; sleepers stand in the order of falling asleep.
  void WakeNext() {
    const auto next = std::ranges::min_element(m_sleepers, {}, &Sleeper::wakes);
    m_now = std::max(m_now, next->wakes);
    m_turn = next->thread;
    m_sleepers.erase(next);
    m_turnChanged.notify_all();
  }

  std::mutex m_lock;
  std::condition_variable m_turnChanged;
  std::uint64_t m_now;
  std::uint64_t m_turn = 0; ///< the thread that may run
  std::uint64_t m_enlisted = 0;
  std::vector<Sleeper> m_sleepers;
};

class FixedClock : public VirtualClock {
public:
  explicit FixedClock(std::uint64_t now) : VirtualClock(now), m_told(now) {}
  std::uint64_t Now() override { return m_told; }

private:
  std::uint64_t m_told;
};

/// Takes a number of exactly `digits` digits and, unless it is zero, the mark behind it off the front of the text.
std::optional<unsigned> TakeNumber(std::string_view& text, std::size_t digits, char mark) {
  unsigned number = 0;
  const std::string_view field = text.substr(0, digits);
  const std::from_chars_result result = std::from_chars(field.data(), field.data() + field.size(), number);
  if (field.size() != digits || result.ec != std::errc() || result.ptr != field.data() + digits) {
    return std::nullopt;
  }
  text.remove_prefix(digits);
  if (mark != '\0') {
    if (text.empty() || text.front() != mark) {
      return std::nullopt;
    }
    text.remove_prefix(1);
  }
  return number;
}

/// "YYYY-MM-DDThh:mm:ssZ" from the year 1601 on.
std::optional<std::uint64_t> TicksFromText(std::string_view text) {
  const auto year = TakeNumber(text, 4, '-');
  const auto month = year ? TakeNumber(text, 2, '-') : std::nullopt;
  const auto day = month ? TakeNumber(text, 2, 'T') : std::nullopt;
  const auto hour = day ? TakeNumber(text, 2, ':') : std::nullopt;
  const auto minute = hour ? TakeNumber(text, 2, ':') : std::nullopt;
  const auto second = minute ? TakeNumber(text, 2, 'Z') : std::nullopt;
  if (!second || !text.empty() || *year < 1601 || *hour > 23 || *minute > 59 || *second > 59) {
    return std::nullopt;
  }
  using namespace std::chrono;
  const year_month_day date{std::chrono::year{static_cast<int>(*year)}, std::chrono::month{*month},
                            std::chrono::day{*day}};
  if (!date.ok()) {
    return std::nullopt;
  }
  const std::int64_t days = sys_days(date).time_since_epoch().count();
  const std::int64_t seconds = days * 86400 + *hour * 3600 + *minute * 60 + *second;
  return static_cast<std::uint64_t>(seconds + static_cast<std::int64_t>(kSecondsTo1970)) * kTicksPerSecond;
}

enum Kind : std::uint8_t { kReal, kFixed, kVirtual };
constexpr CodeName kKinds[] = {{"real", kReal}, {"fixed", kFixed}, {"virtual", kVirtual}};

} // namespace

std::unique_ptr<Clock> MakeRealClock() {
  return std::make_unique<RealClock>();
}

std::unique_ptr<Clock> MakeFixedClock(std::uint64_t now) {
  return std::make_unique<FixedClock>(now);
}

std::unique_ptr<Clock> MakeVirtualClock(std::uint64_t now) {
  return std::make_unique<VirtualClock>(now);
}

std::unique_ptr<Clock> ReadClock(const Node& clock) {
  std::unique_ptr<Clock> made;
  ReadMembers(clock, [&](Members& members) {
    const auto kind = members["kind"].Word<Kind>(kKinds, kReal);
    if (kind == kReal) {
      made = MakeRealClock();
      return;
    }
    const Node start = members["now"];
    const std::optional<std::uint64_t> now = TicksFromText(start.NarrowText(20, kDefaultNow));
    if (!now) {
      start.Refuse("a time like \"2026-11-19T04:50:54Z\"");
    }
    made = kind == kFixed ? MakeFixedClock(*now) : MakeVirtualClock(*now);
  });
  return made;
}

} // namespace simhost
