#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/limits.h"
#include "app/report/rdac_report.h"
#include "bench/bare_rdac_report.h"
#include "bench/beside_bare.h"
#include "bench/made_host.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <benchmark/benchmark.h>

// Rendering alone: the module has been read before.

namespace {

korvex::RdacInfoRequest gRequest;

void Collect(int luns) {
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(MadeHost(1, luns, 32, 1), "")));
  korvex::ResetRunState();
  korvex::ConnectRooms();
  korvex::StartChannel();
  korvex::gUtilMaxLuns = korvex::kUnknownLimit;
  korvex::gUtilMaxPaths = korvex::kUnknownLimit;
  korvex::GetRdacInfoForTarget(0, gRequest);
}

void PrintReport() {
  korvex::PrintRdacInfo(gRequest);
}

/// The report of one array module of N LUNs, each reached on 2 x 32 paths.
void RenderModule(benchmark::State& state) {
  Collect(static_cast<int>(state.range(0)));
  ReadyRdacReport(gRequest);
  MeasureBesideBare(state, PrintReport, PrintBareRdacReport);
  gRequest.info.Release();
  korvex::FreeRunBuffers();
  state.SetComplexityN(state.range(0));
}
BENCHMARK(RenderModule)
    ->Arg(32)
    ->Arg(64)
    ->Arg(128)
    ->Arg(256)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

} // namespace
