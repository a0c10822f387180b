#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/inventory/limits.h"
#include "app/records/status_scan.h"
#include "bench/made_host.h"
#include "bench/record_directory.h"
#include "bench/standard_output.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <string>

// -S with the record files of an earlier scan, the simulated host's work and the flushing of each file included. The
// clock is the host's: no wait takes time.

namespace {

void Scan() {
  korvex::utilArrayStatusScan();
}

/// Scans arrays that print `linesOfOne` lines each.
void MeasureScans(benchmark::State& state, const std::string& host, std::int64_t linesOfOne) {
  LayRecordDirectory("scanned");
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(host, "")));
  korvex::ResetRunState();
  korvex::ConnectRooms();
  korvex::StartChannel();
  korvex::MaxArrayModules = korvex::kUnknownLimit;
  const std::string first = CapturedOutput(Scan);
  // A blank line, the heading and the line without missing arrays follow.
  if (std::ranges::count(first, '\n') != state.range(0) * linesOfOne + 3 || CapturedOutput(Scan) != first) {
    state.SkipWithError("the scan does not show every path");
    return;
  }
  const SilentOutput silent;
  for ([[maybe_unused]] auto _ : state) {
    Scan();
  }
  korvex::FreeRunBuffers();
  state.SetComplexityN(state.range(0));
}

void OverSizes(benchmark::internal::Benchmark* family) {
  family->Arg(16)->Arg(32)->Arg(64)->Iterations(2)->UseRealTime()->MeasureProcessCPUTime();
  family->Unit(benchmark::kMillisecond)->Complexity();
}

/// N modules of 256 LUNs with 2 x 16 paths.
void ScanModules(benchmark::State& state) {
  MeasureScans(state, MadeHost(static_cast<int>(state.range(0)), 256, 16, 1), 1 + 256 * 16);
}
BENCHMARK(ScanModules)->Apply(OverSizes);

/// N arrays of 64 LUNs with 2 x 2 paths: 256 device records, of which 255 are taken.
void ScanArrays(benchmark::State& state) {
  MeasureScans(state, MadeHost(static_cast<int>(state.range(0)), 64, 2), 1 + 64 * 2);
}
BENCHMARK(ScanArrays)->Apply(OverSizes);

} // namespace
