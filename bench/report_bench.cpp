#include "app/cli/main_flow.h"
#include "bench/made_host.h"
#include "simhost/host.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

// Whole reports in one process, over a simulated host in memory. The host's own work is part of the figures.

namespace {

/// Sends standard output nowhere while it lives, so that the terminal is not measured.
class SilentOutput {
public:
  SilentOutput() : m_saved(dup(1)) {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, 1);
    close(nowhere);
  }
  ~SilentOutput() {
    std::fflush(stdout);
    dup2(m_saved, 1);
    close(m_saved);
  }
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;

private:
  int m_saved;
};

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

/// The collection of one array with N LUNs of 32 paths each.
void CollectArray(benchmark::State& state) {
  MeasureRun(state, MadeHost(1, static_cast<int>(state.range(0)), 16), {"korvex", "-g", "0"});
}
BENCHMARK(CollectArray)->Arg(16)->Arg(64)->Arg(128)->Arg(255)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace
