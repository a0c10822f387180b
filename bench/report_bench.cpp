#include "app/cli/main_flow.h"
#include "bench/made_host.h"
#include "bench/standard_output.h"
#include "simhost/host.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

// Whole reports in one process, over a simulated host in memory. The host's own work is part of the figures.

namespace {

int Run(std::vector<std::string> words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  return korvex::RunKorvex(static_cast<int>(words.size()), pointers.data());
}

void MeasureRun(benchmark::State& state, const std::string& description, const std::vector<std::string>& words) {
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(description, "")));
  double calls = 0;
  {
    const SilentOutput silent;
    for ([[maybe_unused]] auto _ : state) {
      const auto before = simhost::CallCount("ExecMethod");
      benchmark::DoNotOptimize(Run(words));
      calls = static_cast<double>(simhost::CallCount("ExecMethod") - before);
    }
  }
  state.SetComplexityN(state.range(0));
  state.counters["method_calls"] = calls;
}

/// -a over N arrays of two controllers with 32 paths each.
void ListArrays(benchmark::State& state) {
  MeasureRun(state, MadeHost(static_cast<int>(state.range(0)), 1, 32), {"korvex", "-a"});
}
BENCHMARK(ListArrays)->Arg(16)->Arg(64)->Arg(128)->Arg(255)->Unit(benchmark::kMillisecond)->Complexity();

/// The collection and the plain report of one array with N LUNs of 32 paths each.
void CollectArray(benchmark::State& state) {
  MeasureRun(state, MadeHost(1, static_cast<int>(state.range(0)), 16), {"korvex", "-g", "0"});
}
BENCHMARK(CollectArray)->Arg(16)->Arg(64)->Arg(128)->Arg(255)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace
