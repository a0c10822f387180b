#include "simhost/host.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// The DSM of a description as its clients see it. Selections, levels and the version are shown by transcripts.

namespace simhost {
namespace {

/// LUNs away from home in both arrays.
constexpr const char* kDescription = R"({"dsms": [{"maxModules": 30, "maxPaths": 8, "maxLuns": 100, "arrays": [
    {"id": 3, "luns": [{"preferred": "A", "owner": "B"}, {"preferred": "A"}]},
    {"id": 9, "controllers": [{"paths": [{}]}],
     "luns": [{"preferred": "B", "owner": "A", "ownerSerial": "THEOWNER00", "preferredSerial": "HOME000000"}]}]}]})";
constexpr const wchar_t* kMethods = L"ZELMPXDSM_WMI_METHODS_V2";
constexpr const wchar_t* kPath = L"ZELMPXDSM_WMI_METHODS_V2=\"ROOT\\\\ZELMPXDSM\\\\0000_0\"";

class DriverProviderTest : public testing::Test {
protected:
  /// The first output of a method, given an object of `className` with one property as its input where it has one.
  CimValue Call(const wchar_t* method, const wchar_t* className = nullptr, const wchar_t* property = nullptr,
                const CimValue& value = {}) {
    std::optional<CimObject> input;
    if (className != nullptr) {
      const CimObject argument = CimObject(m_host->repository.RequireClass(className)).Set(property, value);
      const ClassRef inputs = m_host->repository.RequireClass(kMethods)->FindMethod(method)->inputClass;
      input.emplace(inputs).Set(inputs->properties[0].name, CimValue::Embed(argument));
    }
    std::optional<CimObject> output;
    EXPECT_EQ(m_host->repository.ExecuteMethod(kPath, method, input ? &*input : nullptr, output).result,
              WBEM_S_NO_ERROR);
    return output ? output->ValueAt(0) : CimValue();
  }

  /// Designation and serial number of each LUN's owner.
  std::vector<std::string> Owners() {
    const CimValue list = Call(L"VrxDsmGetMPGInfo", L"VRXDSM_INPUT_ARGUMENTS", L"argType", 0U);
    std::vector<std::string> owners;
    for (const CimValue& element : *list.IfObject()->Value(L"List").IfArray()) {
      const CimValue buffer = element.IfObject()->Value(L"Buffer");
      const std::vector<std::uint8_t>& bytes = *buffer.IfBytes();
      owners.push_back(std::to_string(bytes.at(98)) + std::string(bytes.begin() + 99, bytes.begin() + 109));
    }
    return owners;
  }

  std::unique_ptr<Host> m_host = ReadHost(kDescription, {});
};

TEST_F(DriverProviderTest, CountsWhatIsDescribed) {
  const std::pair<std::wstring, std::uint64_t> rows[] = {
      {L"VrxDsmGetCurrentNumberOfArrays", 2}, {L"VrxDsmGetCurrentNumberOfLuns", 3},
      {L"VrxDsmGetCurrentNumberOfCtlrs", 3},  {L"VrxDsmGetCurrentNumberOfPaths", 5},
      {L"VrxGetMaxModulesSupported", 30},     {L"VrxGetMaxPathsSupported", 8},
      {L"VrxGetMaxLunsSupported", 100},       {L"VrxGetMofFileVersion", 2},
  };
  for (const auto& [method, number] : rows) {
    EXPECT_EQ(Call(method.c_str()).Number(), number) << testing::PrintToString(method);
  }
}

TEST_F(DriverProviderTest, AScanMovesLunsHome) {
  EXPECT_EQ(Owners(), (std::vector<std::string>{"1SN00003001", "0SN00003000", "0THEOWNER00"}));
  Call(L"VrxPerformScan", L"VRXDSM_SCAN_OPTION", L"ScanOption", L"forcerebalance");
  EXPECT_EQ(Owners(), (std::vector<std::string>{"0SN00003000", "0SN00003000", "1HOME000000"}));
}

} // namespace
} // namespace simhost
