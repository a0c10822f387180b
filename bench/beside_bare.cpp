#include "bench/beside_bare.h"

#include "bench/standard_output.h"

#include <ctime>

namespace {

/// The processor's time: other work on the machine does not count.
double SecondsOf(void (&print)()) {
  const std::clock_t start = std::clock();
  print();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

} // namespace

void MeasureBesideBare(benchmark::State& state, void (&report)(), void (&bare)()) {
  if (CapturedOutput(report) != CapturedOutput(bare)) {
    state.SkipWithError("the bare loop writes other bytes than the report");
    return;
  }
  double reportSeconds = 0;
  double bareSeconds = 0;
  {
    const SilentOutput silent;
    for ([[maybe_unused]] auto _ : state) {
      const double seconds = SecondsOf(report);
      state.SetIterationTime(seconds);
      reportSeconds += seconds;
      bareSeconds += SecondsOf(bare);
    }
  }
  state.counters["ratio"] = reportSeconds / bareSeconds;
}
