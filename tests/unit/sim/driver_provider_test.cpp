#include "simhost/host.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

// The DSM of a description as its clients see it.

namespace simhost {
namespace {

/// Three arrays, the last two with one WWN; LUNs away from home in the first two.
constexpr const char* kDescription = R"({"dsms": [{
  "service": "zelmpxdsm", "version": {"major": 2, "minor": 1, "build": 37, "qfe": 4}, "debugLevel": 5, "errorLevel": 6,
  "maxModules": 30, "maxPaths": 8, "maxLuns": 100,
  "arrays": [
    {"id": 3, "wwn": "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa",
     "luns": [{"preferred": "A", "owner": "B"}, {"preferred": "A"}]},
    {"id": 9, "wwn": "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb", "controllers": [{"paths": [{}]}],
     "luns": [{"preferred": "B", "owner": "A", "ownerSerial": "THEOWNER00", "preferredSerial": "HOME000000"}]},
    {"id": 12, "wwn": "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb"}]}]})";
constexpr const char* kEmpty = R"({"dsms": [{}]})";
constexpr const wchar_t* kPath = L"ZELMPXDSM_WMI_METHODS_V2.InstanceName=\"ROOT\\\\ZELMPXDSM\\\\0000_0\"";

struct DriverClient {
  std::unique_ptr<Host> host;

  explicit DriverClient(const char* description, const std::string& statePath = {})
      : host(ReadHost(description, statePath)) {}

  HRESULT Call(const wchar_t* method, const wchar_t* input, CimValue value, std::optional<CimObject>& output) {
    std::optional<CimObject> arguments;
    if (input != nullptr) {
      const ClassRef methods = host->repository.RequireClass(L"ZELMPXDSM_WMI_METHODS_V2");
      arguments.emplace(methods->FindMethod(method)->inputClass).Set(input, std::move(value));
    }
    return host->repository.ExecuteMethod(kPath, method, arguments ? &*arguments : nullptr, output).result;
  }

  HRESULT Set(const wchar_t* method, const wchar_t* input, CimValue value) {
    std::optional<CimObject> none;
    return Call(method, input, std::move(value), none);
  }

  HRESULT Scan(const wchar_t* option) {
    CimObject scan(host->repository.RequireClass(L"VRXDSM_SCAN_OPTION"));
    scan.Set(L"ScanOption", option);
    return Set(L"VrxPerformScan", L"ScanType", CimValue::Embed(std::move(scan)));
  }

  CimObject Selection(unsigned type, unsigned id, const wchar_t* wwn) const {
    CimObject selection(host->repository.RequireClass(L"VRXDSM_INPUT_ARGUMENTS"));
    selection.Set(L"argType", type).Set(L"argID", id).Set(L"argWWN", wwn);
    return selection;
  }

  /// The records of the list that a method answers; none when it fails.
  std::optional<std::vector<CimObject>> Records(const wchar_t* method, CimObject selection) {
    std::optional<CimObject> output;
    if (FAILED(Call(method, L"inputArguments", CimValue::Embed(std::move(selection)), output))) {
      return std::nullopt;
    }
    std::vector<CimObject> records;
    for (const CimValue& element : *output->ValueAt(0).IfObject()->Value(L"List").IfArray()) {
      records.push_back(*element.IfObject());
    }
    return records;
  }

  std::uint64_t Number(const wchar_t* method) {
    std::optional<CimObject> output;
    EXPECT_EQ(Call(method, nullptr, {}, output), WBEM_S_NO_ERROR);
    return output ? output->ValueAt(0).Number() : ~std::uint64_t{0};
  }

  std::uint64_t InstanceNumber(const wchar_t* property) const {
    std::vector<CimObject> instances;
    host->repository.EnumerateInstances(L"ZELMPXDSM_WMI_METHODS_V2", false, instances);
    return instances.at(0).Value(property).Number();
  }

  /// Designation and serial number of each LUN's owner.
  std::vector<std::string> Owners() {
    std::vector<std::string> owners;
    const auto records = Records(L"VrxDsmGetMPGInfo", Selection(0, 0, L""));
    for (const CimObject& record : records.value()) {
      const std::vector<std::uint8_t>& bytes = *record.Value(L"Buffer").IfBytes();
      owners.push_back(std::to_string(bytes[98]) + std::string(bytes.begin() + 99, bytes.begin() + 109));
    }
    return owners;
  }
};

TEST(DriverProviderTest, AnswersForTheSelectedArrays) {
  DriverClient client(kDescription);
  const struct {
    unsigned type;
    unsigned id;
    const wchar_t* wwn;
    std::vector<int> arrays; ///< none: the method fails
  } rows[] = {
      {0, 0, L"", {3, 9, 12}},
      {0, 9, L"x", {3, 9, 12}},
      {1, 9, L"", {9}},
      {1, 0, L"", {}},
      {2, 0, L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", {3}},
      {2, 0, L"bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb", {9, 12}},
      {2, 0, L"AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA", {}},
      {2, 0, L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", {}},
      {2, 3, L"", {}},
      {3, 3, L"", {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.type);
    const auto records = client.Records(L"VrxDsmGetArrayInfo", client.Selection(row.type, row.id, row.wwn));
    ASSERT_EQ(records.has_value(), !row.arrays.empty());
    std::vector<int> ids;
    for (const CimObject& record : records.value_or(std::vector<CimObject>())) {
      EXPECT_EQ(record.Value(L"Size").Number(), 186U);
      ids.push_back(record.Value(L"Buffer").IfBytes()->at(164));
    }
    EXPECT_EQ(ids, row.arrays);
  }
  std::optional<CimObject> output;
  EXPECT_TRUE(FAILED(client.Call(L"VrxDsmGetArrayInfo", nullptr, {}, output)));
  EXPECT_TRUE(FAILED(client.Call(L"VrxDsmGetArrayInfo", L"inputArguments", {}, output)));
}

TEST(DriverProviderTest, GivesTheListsOfAnArrayTheCountsAndTheVersion) {
  DriverClient client(kDescription);
  const std::pair<const wchar_t*, std::pair<std::size_t, std::size_t>> lists[] = {
      {L"VrxDsmGetTPGInfo", {2, 7328}},  {L"VrxDsmGetTPGInfoWithStatus", {2, 7328}},  {L"VrxDsmGetMPGInfo", {2, 2126}},
      {L"VrxDsmGetDeviceInfo", {8, 60}}, {L"VrxDsmGetDeviceInfoWithStatus", {8, 60}},
  };
  for (const auto& [method, expected] : lists) {
    const auto records = client.Records(method, client.Selection(1, 3, L""));
    ASSERT_TRUE(records);
    EXPECT_EQ(records->size(), expected.first);
    for (const CimObject& record : *records) {
      EXPECT_EQ(record.Value(L"Size").Number(), expected.second);
      EXPECT_EQ(record.Value(L"Buffer").IfBytes()->size(), expected.second);
    }
  }
  const std::pair<const wchar_t*, std::uint64_t> numbers[] = {
      {L"VrxDsmGetCurrentNumberOfArrays", 3}, {L"VrxDsmGetCurrentNumberOfLuns", 3},
      {L"VrxDsmGetCurrentNumberOfCtlrs", 5},  {L"VrxDsmGetCurrentNumberOfPaths", 9},
      {L"VrxGetMaxModulesSupported", 30},     {L"VrxGetMaxPathsSupported", 8},
      {L"VrxGetMaxLunsSupported", 100},       {L"VrxGetMofFileVersion", 2},
  };
  for (const auto& [method, number] : numbers) {
    EXPECT_EQ(client.Number(method), number) << testing::PrintToString(std::wstring(method));
  }
  std::optional<CimObject> output;
  ASSERT_EQ(client.Call(L"VrxDsmGetDriverVersion", nullptr, {}, output), WBEM_S_NO_ERROR);
  const CimObject& version = *output->ValueAt(0).IfObject();
  EXPECT_EQ(version.Value(L"MajorVersion").Number(), 2U);
  EXPECT_EQ(version.Value(L"MinorVersion").Number(), 1U);
  EXPECT_EQ(version.Value(L"ProductBuild").Number(), 37U);
  EXPECT_EQ(version.Value(L"QfeNumber").Number(), 4U);
  EXPECT_FALSE(DriverClient(kEmpty).Records(L"VrxDsmGetArrayInfo", client.Selection(0, 0, L"")));
  EXPECT_EQ(client.Call(L"VrxOptionControlRequest", nullptr, {}, output), static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER));
}

/// A state file that is gone before and after.
struct StatePath {
  std::string path = "driver_provider_test." + std::to_string(getpid()) + ".jsonl";
  StatePath() { std::filesystem::remove(path); }
  ~StatePath() { std::filesystem::remove(path); }
};

TEST(DriverProviderTest, LevelsStayForTheNextRun) {
  const StatePath state;
  DriverClient client(kDescription, state.path);
  EXPECT_EQ(client.InstanceNumber(L"DebugLevel"), 5U);
  EXPECT_EQ(client.InstanceNumber(L"ErrorLevel"), 6U);
  EXPECT_EQ(client.Set(L"VrxSetDebugLevel", L"DebugLevel", 0xFFFFFFFFU), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.Set(L"VrxSetErrorLevel", L"ErrorLevel", -2), WBEM_S_NO_ERROR);
  EXPECT_TRUE(FAILED(client.Set(L"VrxSetErrorLevel", L"ErrorLevel", {})));
  const DriverClient next(kDescription, state.path);
  for (const DriverClient* run : {&std::as_const(client), &next}) {
    EXPECT_EQ(run->InstanceNumber(L"DebugLevel"), 0xFFFFFFFFU);
    EXPECT_EQ(run->InstanceNumber(L"ErrorLevel"), 0xFFFFFFFEU);
  }
}

TEST(DriverProviderTest, AScanMovesLunsHomeForGood) {
  const StatePath state;
  DriverClient client(kDescription, state.path);
  const std::vector<std::string> away = {"1SN00003001", "0SN00003000", "0THEOWNER00"};
  const std::vector<std::string> home = {"0SN00003000", "0SN00003000", "1HOME000000"};
  EXPECT_EQ(client.Owners(), away);
  EXPECT_EQ(client.Scan(L"sometimes"), static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER));
  EXPECT_EQ(client.Owners(), away);
  EXPECT_EQ(client.host->state.Number("dsms/ZELMPXDSM/scans", 0), 0U);
  EXPECT_EQ(client.Scan(L"forcerebalance"), WBEM_S_NO_ERROR);
  EXPECT_EQ(client.Owners(), home);
  DriverClient next(kDescription, state.path);
  EXPECT_EQ(next.Owners(), home);
  EXPECT_EQ(next.Scan(L"forcerebalance"), WBEM_S_NO_ERROR);
  EXPECT_EQ(next.Owners(), home);
  EXPECT_EQ(next.host->state.Number("dsms/ZELMPXDSM/scans", 0), 2U);
  EXPECT_EQ(next.host->state.Number("dsms/ZELMPXDSM/arrays/3/luns/0/owner", 9), 0U);
  EXPECT_EQ(next.host->state.Find("dsms/ZELMPXDSM/arrays/3/luns/1/owner"), std::nullopt);
}

} // namespace
} // namespace simhost
