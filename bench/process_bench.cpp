#include "bench/made_host.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <utility>
#include <vector>

// Whole processes: what a start costs beside a program that does nothing, and how much memory the largest collection
// takes.

extern char** environ;

namespace {

namespace fs = std::filesystem;

/// Runs a program in `directory` with its standard output thrown away and its standard error in the file "errors".
void RunProcess(const fs::path& directory, std::vector<std::string> words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "errors", O_WRONLY | O_CREAT | O_TRUNC, 0666);
  pid_t child = 0;
  const int spawned = posix_spawn(&child, words[0].c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (spawned != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
    std::fprintf(stderr, "cannot run %s\n", words[0].c_str());
    std::exit(1);
  }
}

/// The peak memory of one run in KiB.
double PeakMemory(const fs::path& directory, std::vector<std::string> words) {
  words.insert(words.begin(), KORVEX_PEAK_MEMORY);
  RunProcess(directory, std::move(words));
  std::ifstream errors(directory / "errors");
  std::string word;
  double peak = 0;
  while (errors >> word) {
    if (word == "peak_KiB" && errors >> peak) {
      return peak;
    }
  }
  std::fprintf(stderr, "no peak memory in %s\n", (directory / "errors").c_str());
  std::exit(1);
}

/// A directory with the program in it and, unless it is empty, a host's description.
fs::path LayDirectory(const std::string& name, const std::string& description) {
  fs::path directory = fs::path(KORVEX_BENCH_WORK) / name;
  fs::remove_all(directory);
  fs::create_directories(directory);
  fs::copy_file(KORVEX_PROGRAM, directory / "korvex");
  if (!description.empty()) {
    std::ofstream(directory / "host.json") << description;
  }
  return directory;
}

void MeasureProcess(benchmark::State& state, const fs::path& directory, const std::vector<std::string>& words) {
  for ([[maybe_unused]] auto _ : state) {
    RunProcess(directory, words);
  }
  state.counters["peak_KiB"] = PeakMemory(directory, words);
}

void EmptyProgram(benchmark::State& state) {
  MeasureProcess(state, LayDirectory("empty", ""), {KORVEX_EMPTY_PROGRAM});
}
BENCHMARK(EmptyProgram)->UseRealTime()->Unit(benchmark::kMicrosecond);

/// Start-up over a machine without DSM: COM, the version class, the listing of no DSM.
void StartUpWithoutDsm(benchmark::State& state) {
  const fs::path directory = LayDirectory("no-dsm", "");
  MeasureProcess(state, directory, {directory / "korvex", "-D"});
}
BENCHMARK(StartUpWithoutDsm)->UseRealTime()->Unit(benchmark::kMicrosecond);

void LargestCollection(benchmark::State& state) {
  const fs::path directory = LayDirectory("largest", MadeHost(1, 255, 16));
  MeasureProcess(state, directory, {directory / "korvex", "-g", "0"});
}
BENCHMARK(LargestCollection)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
