#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/mpio/disk_mapping.h"
#include "bench/standard_output.h"
#include "platform/com_owners.h"
#include "simhost/host.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <string>
#include <vector>

// The disk mapping at its worst: 256 disks, and each is the last of the framework's drives.

namespace {

constexpr int kDisks = 256;
using Drives = std::vector<platform::ComPtr<IWbemClassObject>>;

const std::string kIdentifier = "60a1b2c3001234560000000000000001";

/// 256 disks of one identifier, and `drives` drives of which the last has it.
std::string Description(int drives) {
  std::string text = R"({"dsms": [{"generation": 1}], "disks": [)";
  for (int i = 0; i < kDisks; ++i) {
    text += (i == 0 ? "" : ",") + (R"({"identifier": ")" + kIdentifier + "\"}");
  }
  text += R"(], "mpio": {"drives": [)";
  for (int i = 1; i < drives; ++i) {
    text += R"({"serial": "60a1b2c300123456ffffffffffffffff"},)";
  }
  return text + R"({"serial": ")" + kIdentifier + R"("}]}})";
}

/// The framework's drives as WMI hands them out.
Drives TakeDrives() {
  korvex::OrbWmiConnection connection;
  korvex::OrbWmiClass disks;
  korvex::OrbWmiClass drives;
  korvex::OrbWmiEnumerator framework;
  korvex::OrbWmiEnumerator* elements = nullptr;
  connection.Initialize(L"root\\WMI");
  disks.Initialize(connection, L"MPIO_DISK_INFO");
  drives.Initialize(connection, L"MPIO_DRIVE_INFO");
  framework.Initialize(&disks);
  framework.InitArrayEnumerator(&drives, L"DriveInfo", &elements);
  Drives taken;
  for (int i = 0; elements->GetElement(i) == korvex::kWmiSuccess; ++i) {
    elements->GetClassObjectInstance()->AddRef();
    taken.emplace_back(elements->GetClassObjectInstance());
  }
  platform::DeleteObject(elements);
  return taken;
}

/// What the searches cannot do without: each disk reads the serial number of each drive.
void ReadSerialNumbers(const Drives& drives) {
  for (int disk = 0; disk < kDisks; ++disk) {
    for (const platform::ComPtr<IWbemClassObject>& drive : drives) {
      VARIANT serial;
      VariantInit(&serial);
      drive->Get(L"SerialNumber", 0, &serial, nullptr, nullptr);
      benchmark::DoNotOptimize(serial.bstrVal);
      VariantClear(&serial);
    }
  }
}

template <class Work>
double SecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// -M over 256 disks and N drives. The counter "ratio" is its time over that of the bare property reads, by turns.
void MapDisks(benchmark::State& state) {
  const int drives = static_cast<int>(state.range(0));
  platform::ReplaceMachine(simhost::MakeSimulatedMachine(simhost::ReadHost(Description(drives), "")));
  korvex::ResetRunState();
  korvex::ConnectRooms();
  korvex::StartChannel();
  const auto objects = TakeDrives();
  double report = 0;
  double bare = 0;
  std::uint64_t requests = 0;
  {
    const SilentOutput silent;
    for ([[maybe_unused]] auto _ : state) {
      const auto before = simhost::CallCount("DeviceIoControl");
      const double seconds = SecondsOf([] { korvex::ShowMpioMappings(); });
      requests = simhost::CallCount("DeviceIoControl") - before;
      state.SetIterationTime(seconds);
      report += seconds;
      bare += SecondsOf([&objects] { ReadSerialNumbers(objects); });
    }
  }
  korvex::FreeRunBuffers();
  constexpr std::uint64_t kRequestsPerDisk = 3; // two inquiries and the address
  if (requests != kRequestsPerDisk * kDisks) {
    state.SkipWithError("a reported disk is asked otherwise than twice for pages and once for its address");
  }
  state.SetComplexityN(drives);
  state.counters["reads"] = static_cast<double>(objects.size()) * kDisks;
  state.counters["ratio"] = report / bare;
}
BENCHMARK(MapDisks)->Arg(1)->Arg(64)->Arg(128)->Arg(255)->UseManualTime()->Unit(benchmark::kMillisecond)->Complexity();

} // namespace
