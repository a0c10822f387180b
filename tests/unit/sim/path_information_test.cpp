#include "app/cli/end_of_run.h"
#include "app/inventory/path_information.h"
#include "tests/unit/sim/channel_host.h"

#include <string>

namespace korvex {
namespace {

/// What the program holds of the framework's paths: each entry in words; a zero entry is "0".
std::wstring PathsOf(const std::string& framework) {
  platform::ReplaceMachine(
      simhost::MakeSimulatedMachine(simhost::ReadHost(R"({"dsms": [{}], )" + framework + "}", "")));
  ResetRunState();
  EXPECT_TRUE(StartChannel());
  EXPECT_TRUE(ReadPathInformation());
  EXPECT_EQ(gDsmChannel->connection.IsConnected(), 0);
  std::wstring shown;
  for (std::uint32_t i = 0; i < gPathInformation->count; ++i) {
    const PathInformationEntry& entry = gPathInformation->Entries()[i];
    for (const std::uint64_t number : {entry.PathId, std::uint64_t{entry.BusNumber}, std::uint64_t{entry.DeviceNumber},
                                       std::uint64_t{entry.FunctionNumber}}) {
      shown += std::to_wstring(number) + L" ";
    }
    shown += std::wstring(entry.AdapterName) + L"; ";
  }
  FreeRunBuffers();
  platform::DeleteObject(std::exchange(gDsmChannel, nullptr));
  CoUninitialize();
  platform::ReplaceMachine(nullptr);
  return shown;
}

TEST(PathInformationTest, EntriesAreThoseOfTheFramework) {
  const std::string paths = R"("paths": [
    {"pathId": "0xffffffffffffffff", "bus": 255, "device": 30, "function": 7, "adapter": "\u00e9"},
    {"pathId": 2, "bus": 3, "device": 1, "function": 0, "adapter": "Adapter B"}])";
  const std::string named = R"("mpio": {"paths": [{"pathId": 1, "adapter": ")";
  const std::pair<std::string, std::wstring> rows[] = {
      {R"("mpio": {)" + paths + "}", L"18446744073709551615 255 30 7 \u00e9; 2 3 1 0 Adapter B; "},
      {R"("mpio": {"announcedPaths": 1, )" + paths + "}", L"18446744073709551615 255 30 7 \u00e9; "},
      {R"("mpio": {"announcedPaths": 4, )" + paths + "}",
       L"18446744073709551615 255 30 7 \u00e9; 2 3 1 0 Adapter B; 0 0 0 0 ; 0 0 0 0 ; "},
      {R"("mpio": {"announcedPaths": 0, )" + paths + "}", L""},
      {named + std::string(79, 'a') + R"("}]})", L"1 0 0 0 " + std::wstring(63, L'a') + L"; "},
      {named + std::string(80, 'a') + R"("}, {"pathId": 2}]})", L"1 0 0 0 ; 0 0 0 0 ; "},
      {named +
           R"(x"}]}, "overrides": [{"class": "MPIO_ADAPTER_INFORMATION", "property": "AdapterName", "null": true}])",
       L"1 0 0 0 ; "},
  };
  for (const auto& [framework, shown] : rows) {
    EXPECT_EQ(PathsOf(framework), shown) << framework;
  }
}

} // namespace
} // namespace korvex
