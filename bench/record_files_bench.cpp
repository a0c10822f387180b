#include "app/cli/console/run_state.h"
#include "app/records/record_deletion.h"
#include "bench/record_directory.h"
#include "bench/standard_output.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <string>
#include <unistd.h>

// Directories of many record files, beside the system's own calls.

namespace {

char gName[] = "no such array";

/// Lays N record files of one LUN.
void LayRecords(const std::string& directory, std::int64_t files) {
  for (std::int64_t file = 0; file < files; ++file) {
    char name[48];
    std::snprintf(name, sizeof name, "60a1b2c3000d4e5f%016llx.wwn",
                  static_cast<unsigned long long>(file * 7919 % files));
    std::ofstream(directory + name) << std::string(88, 'a') << '\n' << std::string(180, 'b') << '\n';
  }
}

/// Calls `act` with the path of every record file.
template <class Act>
void WalkBare(const std::string& directory, Act act) {
  DIR* walk = opendir(directory.c_str());
  while (const dirent* entry = readdir(walk)) {
    if (entry->d_name[0] != '.' && act(directory + entry->d_name) != 0) {
      std::perror(entry->d_name);
      std::exit(1);
    }
  }
  closedir(walk);
}

template <class Act>
double SecondsOf(Act act) {
  const auto start = std::chrono::steady_clock::now();
  act();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ExpectEmpty(benchmark::State& state, const std::string& directory) {
  if (rmdir(directory.c_str()) != 0) {
    state.SkipWithError("files are left");
  }
}

/// -c without a word: deletes N record files, each named on standard error.
void DeleteRecords(benchmark::State& state) {
  double seconds = 0;
  double bareSeconds = 0;
  const SilentOutput silent(2);
  for ([[maybe_unused]] auto _ : state) {
    std::string directory = LayRecordDirectory("deleted");
    LayRecords(directory, state.range(0));
    const double taken = SecondsOf([] { korvex::utilDeleteWWNList(); });
    state.SetIterationTime(taken);
    seconds += taken;
    ExpectEmpty(state, directory);
    directory = LayRecordDirectory("deleted");
    LayRecords(directory, state.range(0));
    bareSeconds +=
        SecondsOf([&] { WalkBare(directory, [](const std::string& path) { return unlink(path.c_str()); }); });
    ExpectEmpty(state, directory);
  }
  state.counters["ratio"] = seconds / bareSeconds;
  state.SetComplexityN(state.range(0));
}
BENCHMARK(DeleteRecords)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond)->Complexity();

void ListRecords(benchmark::State& state) {
  LayRecords(LayRecordDirectory("listed"), state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    korvex::WwnFileList files;
    if (korvex::utilPrintWWNList(files) != 1 || files.numWwnFiles != state.range(0)) {
      state.SkipWithError("files are not listed");
    }
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ListRecords)->Arg(1000)->Arg(10000)->UseRealTime()->Unit(benchmark::kMillisecond)->Complexity();

/// -c with a name: reads the name in each of N record files.
void LookForName(benchmark::State& state) {
  LayRecords(LayRecordDirectory("named"), state.range(0));
  korvex::gOptionArgument = gName;
  const SilentOutput silent;
  for ([[maybe_unused]] auto _ : state) {
    korvex::utilDeleteMissingWWNFiles();
  }
  korvex::gOptionArgument = nullptr;
  state.SetComplexityN(state.range(0));
}
BENCHMARK(LookForName)->Arg(1000)->Arg(10000)->UseRealTime()->Unit(benchmark::kMillisecond)->Complexity();

} // namespace
