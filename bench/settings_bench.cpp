#include "app/cli/main_flow.h"
#include "bench/standard_output.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <ctime>
#include <string>

// -R over N keys against 16 arrays of 256 LUNs: two of five keys are of devices that are present. The simulated host's
// work is part of the figures.

namespace {

constexpr int kArrays = 16;
constexpr int kLuns = 256;

struct Scene {
  std::string description;
  int removed; ///< keys that -R is to remove
};

std::string Wwn(int array, int lun) {
  char text[33];
  std::snprintf(text, sizeof text, "60a1b2c3000d4e5f%08x%08x", static_cast<unsigned>(array + 1),
                static_cast<unsigned>(lun + 1));
  return text;
}

std::string Described(int generation, const std::string& keys) {
  std::string text = R"({"dsms": [{"generation": )" + std::to_string(generation) + R"(, "maxPaths": 2, "arrays": [)";
  for (int array = 0; array < kArrays; ++array) {
    text += (array == 0 ? "" : ",") + (R"({"wwn": ")" + Wwn(array, -1)) +
            R"(", "controllers": [{"paths": [{"id": "0x77000000"}]}], "luns": [)";
    for (int lun = 0; lun < kLuns; ++lun) {
      text += (lun == 0 ? "" : ",") + (R"({"wwn": ")" + Wwn(array, lun)) + R"("})";
    }
    text += "]}";
  }
  return text + R"(]}], "registry": {"SYSTEM\\CurrentControlSet\\Services\\zelmpxdsm\\Parameters": {"keys": {)" + keys +
         "}}}}";
}

/// Whether the key with this number is of a LUN that is present, and which LUN it names.
struct KeyedLun {
  explicit KeyedLun(int key) : isPresent(key % 5 < 2), lun(isPresent ? key / 5 * 2 + key % 5 : 1'000'000 + key) {}
  bool isPresent;
  int lun;
};

/// The keys of LUNs, by turns of each array.
Scene Generation1(int keys) {
  std::string text;
  int removed = 0;
  for (int key = 0; key < keys; ++key) {
    const KeyedLun keyed(key / kArrays);
    removed += keyed.isPresent ? 0 : 1;
    text += (key == 0 ? "\"Lun#" : ", \"Lun#") + Wwn(key % kArrays, keyed.lun) + "\": {}";
  }
  return {Described(1, R"("DeviceSettings": {"keys": {)" + text + "}}"), removed};
}

/// For every array as many LUN keys, each with one path key.
Scene Generation2(int keys) {
  std::string text;
  int removed = 0;
  for (int array = 0; array < kArrays; ++array) {
    text += (array == 0 ? "\"ArraySN#" : ", \"ArraySN#") + Wwn(array, -1) + R"(": {"keys": {)";
    for (int key = 0; key < keys / kArrays / 2; ++key) {
      const KeyedLun keyed(key);
      removed += keyed.isPresent ? 0 : 2;
      text += (key == 0 ? "\"MultiPathDeviceSN#" : ", \"MultiPathDeviceSN#") + Wwn(array, keyed.lun) +
              R"(": {"keys": {"DSMPath#77000000": {}}})";
    }
    text += "}}";
  }
  return {Described(2, text), removed};
}

void RemoveSettings() {
  char program[] = "korvex";
  char option[] = "-R";
  char* words[] = {program, option, nullptr};
  korvex::RunKorvex(2, words);
}

void LayMachine(const Scene& scene) {
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(scene.description, "")));
}

double SecondsOfRemoval(const Scene& scene) {
  LayMachine(scene);
  const SilentOutput silent;
  const std::clock_t start = std::clock();
  RemoveSettings();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

bool RemovesWhatItShould(const Scene& scene) {
  LayMachine(scene);
  const std::string expected = "settings for " + std::to_string(scene.removed) + " inactive devices";
  return CapturedOutput(RemoveSettings).find(expected) != std::string::npos;
}

/// Processor time. The counter "tenth" is that of a tenth of the keys in milliseconds, by turns with it, and "ratio"
/// how many times as much the whole costs.
template <Scene (&makeScene)(int)>
void Remove(benchmark::State& state) {
  const Scene scene = makeScene(static_cast<int>(state.range(0)));
  const Scene tenth = makeScene(static_cast<int>(state.range(0)) / 10);
  if (!RemovesWhatItShould(scene) || !RemovesWhatItShould(tenth)) {
    state.SkipWithError("other keys were removed than should be");
    return;
  }
  double seconds = 0;
  double secondsOfTenth = 0;
  for ([[maybe_unused]] auto _ : state) {
    const double once = SecondsOfRemoval(scene);
    state.SetIterationTime(once);
    seconds += once;
    secondsOfTenth += SecondsOfRemoval(tenth);
  }
  state.counters["tenth"] = benchmark::Counter(1000 * secondsOfTenth, benchmark::Counter::kAvgIterations);
  state.counters["ratio"] = seconds / secondsOfTenth;
}
BENCHMARK(Remove<Generation1>)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Remove<Generation2>)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
