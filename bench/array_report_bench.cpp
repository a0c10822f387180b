#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/inventory/gen2_inventory.h"
#include "app/report/array_report.h"
#include "bench/bare_array_report.h"
#include "bench/made_host.h"
#include "bench/standard_output.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <benchmark/benchmark.h>
#include <chrono>

// Rendering alone: the collection has been made before.

namespace {

void Collect(int luns) {
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(MadeHost(1, luns, 16), "")));
  korvex::ResetRunState();
  korvex::ConnectRooms();
  korvex::StartChannel();
  korvex::gSelectionMode = korvex::kByArrayId;
  korvex::gSelectedArrayId = 0;
  korvex::gNumberOfArrays = 1;
  korvex::gDetailMode = true;
  korvex::gReportSelectionErrors = false;
  korvex::gExtendedReport = true;
  korvex::GetDsmArrayInfo();
}

void PrintReport() {
  korvex::PrintArrayInformation();
}

double SecondsOf(void (&print)()) {
  const auto start = std::chrono::steady_clock::now();
  print();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The extended report of N LUNs of 32 paths each. The counter "ratio" is its time over that of a bare loop which
/// writes the same bytes from ready values, by turns with it.
void RenderArray(benchmark::State& state) {
  Collect(static_cast<int>(state.range(0)));
  ReadyArrayReport();
  if (CapturedOutput(PrintReport) != CapturedOutput(PrintBareArrayReport)) {
    state.SkipWithError("the bare loop writes other bytes than the report");
    return;
  }
  double report = 0;
  double bare = 0;
  {
    const SilentOutput silent;
    for ([[maybe_unused]] auto _ : state) {
      const double seconds = SecondsOf(PrintReport);
      state.SetIterationTime(seconds);
      report += seconds;
      bare += SecondsOf(PrintBareArrayReport);
    }
  }
  korvex::FreeRunBuffers();
  state.SetComplexityN(state.range(0));
  state.counters["ratio"] = report / bare;
}
BENCHMARK(RenderArray)
    ->Arg(32)
    ->Arg(64)
    ->Arg(128)
    ->Arg(255)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

} // namespace
