#include "fuzz/whole_run.h"

#include "app/channel/channel.h"
#include "app/cli/main_flow.h"
#include "app/inventory/limits.h"
#include "app/records/record_directory.h"
#include "platform/allocation.h"
#include "platform/posix/machine.h"
#include "simhost/host.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"
#include "wmi/wmi_layer_trace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace fuzzing {

namespace {

namespace fs = std::filesystem;

void Demand(bool isHeld, const char* what) {
  if (!isHeld) {
    std::fprintf(stderr, "%s\n", what);
    std::abort();
  }
}

/// Takes back what a process has at its start, and what a run leaves for the end of its process.
void StartOver() {
  korvex::ForgetLimits();
  korvex::gWwnDirPath[0] = '\0';
  korvex::WmiLayerTrace::Instance().SetCategoryThreshold(0);
  korvex::WmiLayerTrace::Instance().SetLevelThreshold(0);
  platform::DeleteObject(std::exchange(korvex::gDsmChannel, nullptr));
  CoUninitialize();
}

void DemandNothingLeft() {
  for (std::size_t kind = 0; kind < std::size(simhost::kInterfaceNames); ++kind) {
    Demand(simhost::LiveCount(static_cast<simhost::InterfaceKind>(kind)) == 0, "an interface is left");
  }
  const platform::LiveObjects live = platform::CountLiveObjects();
  Demand(live.bstrs == 0 && live.safeArrays == 0 && live.handles == 0, "a text, an array or a handle is left");
  platform::VisitLiveStores([](const char* name, std::uint64_t, void*) { Demand(false, name); }, nullptr);
}

} // namespace

const std::vector<std::vector<std::string>>& CommandLines() {
  static const std::vector<std::vector<std::string>> lines = {
      {"-a"},
      {"-a", "0", "extended"},
      {"-x", "-g", "1"},
      {"-t", "-a", "Atlas"},
      {"-t", "-a", "60a1b2c3000d4e5f0000000000000a01"},
      {"-w", "60a1b2c3000d4e5f0000000000000a01,a"},
      {"-t", "-w", "60a1b2c3000d4e5f0000000000000c03,B"},
      {"-S", "-S"},
      {"-t", "-S", "-c", "missing"},
      {"-c"},
      {"-R"},
      {"-t", "-R"},
      {"-o"},
      {"-t", "-o", "RetryInterval=10,SaveSettings"},
      {"-o", "SetPathOffline=0x77000001,LoadBalancePolicy=1"},
      {"-M"},
      {"-t", "-M"},
      {"-P", "GetMpioParameters"},
      {"-P", "RetryInterval=5,PDORemovePeriod=0x30"},
      {"-t", "-d", "0x10", "-e", "3", "-s", "busscan", "-s", "forcerebalance"},
      {"-D"},
      {"-D", "oemdsm", "-a"},
  };
  return lines;
}

const std::vector<simhost::Json>& ReadyMadeHosts() {
  static const std::vector<simhost::Json> hosts = [] {
    std::vector<fs::path> files;
    std::ranges::copy(fs::directory_iterator(KORVEX_HOSTS), std::back_inserter(files));
    std::ranges::sort(files);
    std::vector<simhost::Json> read;
    for (const fs::path& file : files) {
      std::ifstream stream(file);
      read.push_back(simhost::ParseJson(std::string(std::istreambuf_iterator(stream), {})));
    }
    return read;
  }();
  return hosts;
}

simhost::Json With(const simhost::Json& description, const simhost::Json::Object& keys) {
  simhost::Json::Object members = description.IfObject() != nullptr ? *description.IfObject() : simhost::Json::Object();
  for (const auto& key : keys) {
    std::erase_if(members, [&](const auto& member) { return member.first == key.first; });
    members.push_back(key);
  }
  return members;
}

void RunOn(std::shared_ptr<simhost::Host> host, std::vector<std::string> words) {
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(std::move(host)));
  words.insert(words.begin(), "korvex");
  std::vector<char*> pointers;
  std::ranges::transform(words, std::back_inserter(pointers), [](std::string& word) { return word.data(); });
  pointers.push_back(nullptr);
  const int status = korvex::RunGuarded(korvex::RunKorvex, static_cast<int>(words.size()), pointers.data());
  Demand(status >= -1 && status <= 1, "a status that no run ends with");
  StartOver();
  platform::ReplaceMachine(nullptr);
  DemandNothingLeft();
}

fs::path RecordDirectory() {
  return platform::ExecutableDirectory() / "WWN_FILES";
}

void RemoveFiles() {
  fs::remove_all(RecordDirectory());
  fs::remove("dsmname.txt");
}

} // namespace fuzzing
