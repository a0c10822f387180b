#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/inventory/gen2_inventory.h"
#include "app/report/array_report.h"
#include "bench/bare_array_report.h"
#include "bench/beside_bare.h"
#include "bench/made_host.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <benchmark/benchmark.h>

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

/// The extended report of N LUNs of 32 paths each.
void RenderArray(benchmark::State& state) {
  Collect(static_cast<int>(state.range(0)));
  ReadyArrayReport();
  MeasureBesideBare(state, PrintReport, PrintBareArrayReport);
  korvex::FreeRunBuffers();
  state.SetComplexityN(state.range(0));
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
