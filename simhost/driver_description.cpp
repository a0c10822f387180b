#include "simhost/array_description.h"
#include "simhost/driver_model.h"
#include "simhost/module_description.h"

namespace simhost {
namespace {

constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
/// The methods class's name as the utility forms it has at most this many characters.
constexpr std::size_t kMethodsClassLength = 24;
constexpr std::size_t kMaxArrays = 4096;

std::wstring UpperCase(std::wstring text) {
  for (wchar_t& letter : text) {
    if (letter >= L'a' && letter <= L'z') {
      letter = static_cast<wchar_t>(letter - L'a' + L'A');
    }
  }
  return text;
}

DriverVersion ReadVersion(const Node& version) {
  DriverVersion model{1, 0, 0, 0};
  ReadMembers(version, [&model](Members& keys) {
    model.major = keys["major"].Unsigned<std::uint32_t>(0, kMax32, model.major);
    model.minor = keys["minor"].Unsigned<std::uint32_t>(0, kMax32, model.minor);
    model.build = keys["build"].Unsigned<std::uint32_t>(0, kMax32, model.build);
    model.qfe = keys["qfe"].Unsigned<std::uint32_t>(0, kMax32, model.qfe);
  });
  return model;
}

std::wstring ReadMethodsClass(const Node& name, const DriverModel& driver) {
  if (name.IsNull()) {
    return {};
  }
  const std::wstring formed = driver.service + (driver.generation == 2 ? L"_WMI_METHODS_V2" : L"_WMI_METHODS");
  return name.Text(255, formed.substr(0, kMethodsClassLength));
}

void ReadArrays(const Node& arrays, DriverModel& driver) {
  for (const Node& array : arrays.Elements(kMaxArrays)) {
    if (driver.generation == 2) {
      driver.arrays.push_back(ReadArray(array, driver.arrays.size()));
    } else {
      driver.modules.push_back(ReadModule(array, driver.modules.size()));
    }
  }
}

} // namespace

DriverModel ReadDriver(const Node& driver, std::size_t index) {
  DriverModel model;
  ReadMembers(driver, [&](Members& keys) {
    const std::wstring service = keys["service"].Text(255, L"zelmpxdsm");
    model.serviceKey = service;
    model.service = UpperCase(service);
    model.name = keys["name"].Text(4096, service);
    model.generation = keys["generation"].Unsigned<int>(1, 2, 2);
    model.methodsClass = ReadMethodsClass(keys["methodsClass"], model);
    model.hasInstance = keys["instance"].Flag(true);
    model.instanceName = keys["instanceName"].Text(4096, L"ROOT\\" + model.service + L"\\0000_0");
    model.context = keys["context"].Unsigned<std::uint64_t>(0, UINT64_MAX, 0xFFFFA80000001000U + 0x1000U * index);
    model.version = ReadVersion(keys["version"]);
    model.debugLevel = keys["debugLevel"].Unsigned<std::uint64_t>(0, UINT64_MAX, 0);
    model.errorLevel = keys["errorLevel"].Unsigned<std::uint32_t>(0, kMax32, 0);
    ReadArrays(keys["arrays"], model);
    model.options = ReadOptions(keys["options"], keys["optionAnswers"]);
    const auto arrays = static_cast<std::uint32_t>(model.arrays.size());
    model.announcedArrays = keys["announcedArrays"].Unsigned<std::uint32_t>(0, kMax32, arrays);
    model.maxModules = keys["maxModules"].Unsigned<std::uint32_t>(0, kMax32, 64);
    model.maxPaths = keys["maxPaths"].Unsigned<std::uint32_t>(0, kMax32, 32);
    model.maxLuns = keys["maxLuns"].Unsigned<std::uint32_t>(0, kMax32, 256);
  });
  return model;
}

} // namespace simhost
