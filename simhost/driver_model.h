#pragma once

#include "simhost/array_model.h"
#include "simhost/description.h"
#include "simhost/module_model.h"
#include "simhost/option_model.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// An installed DSM as the description tells it.

namespace simhost {

struct DriverVersion {
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
  std::uint32_t build = 0;
  std::uint32_t qfe = 0;
};

struct DriverModel {
  std::wstring serviceKey;   ///< the service's name as described: that of its registry key
  std::wstring service;      ///< upper case; also the prefix of its state keys
  std::wstring name;         ///< what its instance calls itself
  std::wstring methodsClass; ///< empty when the class is missing
  bool hasInstance = true;
  std::wstring instanceName;
  int generation = 2;
  std::uint64_t context = 0;
  DriverVersion version;
  std::uint64_t debugLevel = 0;
  std::uint32_t errorLevel = 0;
  std::uint32_t announcedArrays = 0;
  std::uint32_t maxModules = 0;
  std::uint32_t maxPaths = 0;
  std::uint32_t maxLuns = 0;
  OptionsModel options;
  std::vector<ArrayModel> arrays;   ///< in generation 2
  std::vector<ModuleModel> modules; ///< in generation 1
};

/// A DSM as an administrator describes it; `index` is its place in the list of DSMs. Throws DescriptionError.
DriverModel ReadDriver(const Node& driver, std::size_t index);

} // namespace simhost
