#include "simhost/host.h"

#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

// What descriptions of DSMs, of the interface version and of the framework publish, and how wrong ones are refused.

namespace simhost {
namespace {

/// Instance by instance: "null", a text, or bytes as "[2 0]" of the class's next enumerations.
std::vector<std::string> Versions(const std::string& description, int runs) {
  const auto host = ReadHost(description, {});
  std::vector<std::string> shown;
  for (int run = 0; run < runs; ++run) {
    std::vector<CimObject> instances;
    if (FAILED(host->repository.EnumerateInstances(L"VRXDSM_MOF", false, instances).result)) {
      shown.emplace_back("no class");
      continue;
    }
    if (instances.empty()) {
      shown.emplace_back("no instance");
      continue;
    }
    const CimValue& value = instances[0].Value(L"MofFileVersion");
    std::string text;
    if (const std::vector<std::uint8_t>* bytes = value.IfBytes()) {
      for (const std::uint8_t byte : *bytes) {
        text += (text.empty() ? "" : " ") + std::to_string(byte);
      }
      text = "[" + text + "]";
    } else if (const std::wstring* units = value.IfText()) {
      text.assign(units->begin(), units->end());
    }
    shown.push_back(value.IsNull() ? "null" : text);
  }
  return shown;
}

TEST(InterfaceVersionTest, HasEveryForm) {
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {"{}", {"no class"}},
      {R"({"dsms": [{}]})", {"2.0.0"}},
      {R"({"dsms": [{"generation": 1}]})", {"1.0.0"}},
      {R"({"dsms": [{"methodsClass": null}]})", {"2.0.0"}},
      {R"({"dsms": [{}], "interfaceVersion": false})", {"no class"}},
      {R"({"interfaceVersion": "1.0"})", {"1.0"}},
      {R"({"interfaceVersion": {"units": [50, 46, 48]}})", {"2.0"}},
      {R"({"interfaceVersion": null})", {"null"}},
      {R"({"interfaceVersion": {"bytes": "32 00 30"}})", {"[50 0 48]"}},
      {R"({"interfaceVersion": {"sequence": []}})", {"no instance"}},
      {R"({"interfaceVersion": {"sequence": ["2.0", null, {"bytes": [1]}]}})", {"2.0", "null", "[1]", "[1]"}},
  };
  for (const auto& [description, versions] : rows) {
    EXPECT_EQ(Versions(description, static_cast<int>(versions.size())), versions) << description;
  }
}

TEST(DriverDescriptionTest, PublishesEachDsm) {
  const auto host = ReadHost(R"({"dsms": [
    {"service": "oemdsm", "name": "A name longer than others", "instanceName": "X\"Y", "context": "0xfffffa8000000001"},
    {"service": "alongservicename"}, {"service": "old", "generation": 1}, {"service": "gone", "methodsClass": null},
    {"service": "idle", "instance": false}, {"service": "own", "methodsClass": "OwnClass"}]})",
                             {});
  const auto instances = [&host](const wchar_t* name) {
    std::vector<CimObject> found;
    EXPECT_EQ(host->repository.EnumerateInstances(name, false, found).result, WBEM_S_NO_ERROR);
    return found;
  };
  const CimObject oem = instances(L"OEMDSM_WMI_METHODS_V2").at(0);
  EXPECT_EQ(oem.Value(L"DsmName").TextOrEmpty(), L"A name longer than others");
  EXPECT_EQ(oem.Value(L"DsmContext").Number(), 0xFFFFFA8000000001U);
  EXPECT_EQ(oem.RelativePath(), L"OEMDSM_WMI_METHODS_V2.InstanceName=\"X\\\"Y\"");
  EXPECT_EQ(instances(L"ALONGSERVICENAME_WMI_MET").at(0).Value(L"DsmName").TextOrEmpty(), L"alongservicename");
  EXPECT_EQ(host->repository.RequireClass(L"OLD_WMI_METHODS")->FindMethod(L"VrxDsmGetArrayInfo"), nullptr);
  EXPECT_EQ(host->repository.FindClass(L"GONE_WMI_METHODS_V2"), nullptr);
  EXPECT_TRUE(instances(L"IDLE_WMI_METHODS_V2").empty());
  EXPECT_EQ(instances(L"OwnClass").size(), 1U);
}

TEST(DriverDescriptionTest, PublishesTheFrameworksPaths) {
  const auto host = ReadHost(R"({"mpio": {"announcedPaths": 7, "paths": [
    {"pathId": "0xffffffffffffffff", "bus": 1, "device": 2, "function": 3, "adapter": "HBA"}, {}]}})",
                             {});
  std::vector<CimObject> instances;
  host->repository.EnumerateInstances(L"MPIO_PATH_INFORMATION", false, instances);
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].Value(L"NumberPaths").Number(), 7U);
  const std::vector<CimValue>& paths = *instances[0].Value(L"PathList").IfArray();
  ASSERT_EQ(paths.size(), 2U);
  const CimObject& path = *paths[0].IfObject();
  EXPECT_EQ(path.Value(L"PathId").Number(), ~std::uint64_t{0});
  EXPECT_EQ(path.Value(L"BusNumber").Number(), 1U);
  EXPECT_EQ(path.Value(L"DeviceNumber").Number(), 2U);
  EXPECT_EQ(path.Value(L"FunctionNumber").Number(), 3U);
  EXPECT_EQ(path.Value(L"AdapterName").TextOrEmpty(), L"HBA");
  EXPECT_EQ(ReadHost(R"({"mpio": null})", {})->repository.FindClass(L"MPIO_PATH_INFORMATION"), nullptr);
}

/// What is wrong with a description; empty when it is taken.
std::string Refusal(const std::string& description) {
  try {
    ReadHost(description, {});
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

std::string OfArray(const std::string& keys) {
  return R"({"dsms": [{"arrays": [{)" + keys + "}]}]}";
}

std::string Repeated(const std::string& element, int count) {
  std::string list = element;
  for (int index = 1; index < count; ++index) {
    list += "," + element;
  }
  return "[" + list + "]";
}

TEST(DriverDescriptionTest, RefusesWhatIsWrongWithItsPath) {
  const std::string array = "/dsms/0/arrays/0";
  const std::string byte = ", expected an integer from 0 to 255";
  const std::pair<std::string, std::string> rows[] = {
      {R"({"dsms": null})", "/dsms: found null, expected an array of at most 256 elements"},
      {R"({"dsms": [7]})", "/dsms/0: found 7, expected an object"},
      {R"({"dsms": [{"generation": 3}]})", "/dsms/0/generation: found 3, expected an integer from 1 to 2"},
      {R"({"dsms": [{}, {}]})",
       "/dsms/1: found an object, expected a DSM whose methods class no other class of the host has"},
      {R"({"dsms": [{"methodsClass": "vrxdsm_version"}]})",
       "/dsms/0: found an object, expected a DSM whose methods class no other class of the host has"},
      {R"({"dsms": [{"version": "1.0"}]})", "/dsms/0/version: found \"1.0\", expected an object"},
      {R"({"dsms": [{"version": {"qfe": -1}}]})",
       "/dsms/0/version/qfe: found -1, expected an integer from 0 to 4294967295"},
      {R"({"interfaceVersion": true})",
       "/interfaceVersion: found true, expected false for a missing class, a text, null, {\"bytes\": ...} or "
       "{\"sequence\": [...]}"},
      {R"({"interfaceVersion": 2})", "/interfaceVersion: found 2, expected a text of at most 4096 UTF-16 units"},
      {R"({"interfaceVersion": {"sequence": [{"text": "2"}]}})",
       "/interfaceVersion/sequence/0/bytes: found nothing, expected at most 4096 bytes as hexadecimal digit pairs or "
       "numbers"},
      {R"({"mpio": []})", "/mpio: found an array of 0, expected an object"},
      {R"({"mpio": {"paths": [{"bus": 256}]}})", "/mpio/paths/0/bus: found 256" + byte},
      {OfArray(R"("id": 256)"), array + "/id: found 256" + byte},
      {OfArray(R"("wwn": "012345678901234567890123456789012")"),
       array + "/wwn: found \"012345678901234567890123456789012\", expected a text of at most 32 bytes"},
      {OfArray(R"("extendedPathRecovery": "maybe")"),
       array + "/extendedPathRecovery: found \"maybe\", expected one of \"no\", \"yes\" or an integer from 0 to 255"},
      {OfArray(R"("interfaceTypes": ["iscsi"])"),
       array + "/interfaceTypes/0: found \"iscsi\", expected one of \"FC\", \"IB\", \"iSCSI\", \"SAS\", \"unused\" or "
               "an integer from 0 to 255"},
      {OfArray(R"("controllers": [{"paths": )" + Repeated("{}", 33) + "}]"),
       array + "/controllers/0/paths: found an array of 33, expected an array of at most 32 elements"},
      {OfArray(R"("controllers": [{"designation": "C"}])"),
       array + "/controllers/0/designation: found \"C\", expected one of \"A\", \"B\" or an integer from 0 to 255"},
      {OfArray(R"("controllers": [{"paths": [{"congestion": {"begin": 1}}]}])"),
       array + "/controllers/0/paths/0/congestion/begin: found an unknown key, expected one of \"averageResponse\", "
               "\"intervals\", \"ioExceeded\", \"population\", \"present\", \"start\", \"totalResponse\""},
      {OfArray(R"("luns": [{}, {"tas": "sett"}])"),
       array + "/luns/1/tas: found \"sett\", expected one of \"not set\", \"set\", \"set in progress\", \"conflict\", "
               "\"not supported\" or an integer from 0 to 4294967295"},
      {OfArray(R"("luns": [{"paths": [{"flags": [0,0,0,0,0,0,0]}]}])"),
       array + "/luns/0/paths/0/flags: found an array of 7, expected an array of at most 6 elements"},
      {OfArray(R"("luns": [{"raw": "0"}])"),
       array + "/luns/0/raw: found \"0\", expected at most 1048576 bytes as hexadecimal digit pairs or numbers"},
      {OfArray(R"("devices": [{"controller": -1}])"),
       array + "/devices/0/controller: found -1, expected one of \"A\", \"B\", \"none\" or an integer from 0 to 255"},
  };
  for (const auto& [description, refusal] : rows) {
    EXPECT_EQ(Refusal(description), refusal) << description;
  }
}

} // namespace
} // namespace simhost
