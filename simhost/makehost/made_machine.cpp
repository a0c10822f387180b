#include "simhost/makehost/made_machine.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <utility>

namespace simhost {
namespace {

using Random = std::mt19937_64;

/// A number below `bound`; the distributions of the standard library differ between libraries, this does not.
std::uint64_t Below(Random& random, std::uint64_t bound) {
  return random() % bound;
}

std::string HexDigits(std::uint64_t value, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "%0*llx", digits, static_cast<unsigned long long>(value));
  return text;
}

/// 32 hexadecimal digits that begin like a registered identifier and end with `number`, so that no two are equal.
std::string MadeWwn(Random& random, std::uint64_t number) {
  return "6" + HexDigits(random() >> 4, 15) + HexDigits(random() & 0xFFFFFFFF, 8) + HexDigits(number, 8);
}

std::string MadeSerial(std::uint64_t array, std::uint64_t controller) {
  char text[32];
  std::snprintf(text, sizeof text, "SN%06u%02u", static_cast<unsigned>(array), static_cast<unsigned>(controller));
  return text;
}

std::uint64_t PathId(std::uint64_t array, std::uint64_t controller, std::uint64_t path) {
  return 0x77000000U + (array << 16) + (controller << 8) + path;
}

Json MadeController(Random& random, std::uint64_t array, std::uint64_t controller, std::uint64_t paths) {
  static constexpr const char* kInterfaces[] = {"FC", "iSCSI", "SAS", "IB"};
  const char* const interfaceName = kInterfaces[Below(random, 4)];
  Json::Array described;
  for (std::uint64_t path = 0; path < paths; ++path) {
    described.emplace_back(Json::Object{{"id", PathId(array, controller, path)}, {"interface", interfaceName}});
  }
  return Json::Object{{"designation", controller == 0 ? "A" : "B"},
                      {"serial", MadeSerial(array, controller)},
                      {"paths", std::move(described)}};
}

Json MadeLun(Random& random, std::uint64_t array, std::uint64_t lun, std::uint64_t generation) {
  const char* const policies[] = {"round robin with subset", "least queue depth",
                                  generation == 2 ? "least blocks" : "weighted paths"};
  const bool prefersB = Below(random, 2) == 1;
  const bool isAway = Below(random, 8) == 0;
  return Json::Object{{"number", lun},
                      {"wwn", MadeWwn(random, (array << 16) + lun)},
                      {"policy", policies[Below(random, 3)]},
                      {"preferred", prefersB ? "B" : "A"},
                      {"owner", prefersB != isAway ? "B" : "A"}};
}

Json MadeArray(Random& random, std::uint64_t array, const MadeMachine& machine) {
  Json::Array controllers;
  for (std::uint64_t controller = 0; controller < 2; ++controller) {
    controllers.push_back(MadeController(random, array, controller, machine.paths));
  }
  Json::Array luns;
  for (std::uint64_t lun = 0; lun < machine.luns; ++lun) {
    luns.push_back(MadeLun(random, array, lun, machine.generation));
  }
  return Json::Object{{"id", array},
                      {"name", "array-" + std::to_string(array)},
                      {"wwn", MadeWwn(random, (array << 16) + 0xFFFF)},
                      {"controllers", std::move(controllers)},
                      {"luns", std::move(luns)}};
}

/// Each path of each controller through an adapter port of its own.
Json::Array MadeAdapters(const MadeMachine& machine) {
  Json::Array adapters;
  for (std::uint64_t array = 0; array < machine.arrays; ++array) {
    for (std::uint64_t path = 0; path < 2 * machine.paths; ++path) {
      adapters.emplace_back(Json::Object{{"pathId", PathId(array, path / machine.paths, path % machine.paths)},
                                         {"bus", array & 0xFF},
                                         {"device", path / 8},
                                         {"function", path % 8},
                                         {"adapter", "Host Bus Adapter Port " + std::to_string(path)}});
    }
  }
  return adapters;
}

} // namespace

Json MadeDescription(const MadeMachine& machine) {
  Random random(machine.seed);
  Json::Array arrays;
  for (std::uint64_t array = 0; array < machine.arrays; ++array) {
    arrays.push_back(MadeArray(random, array, machine));
  }
  Json::Object driver{{"service", "zelmpxdsm"},
                      {"version", Json::Object{{"major", 2}, {"minor", 1}, {"build", 37}, {"qfe", 4}}},
                      {"arrays", std::move(arrays)}};
  if (machine.generation == 1) {
    driver.insert(driver.end(), {{"generation", 1},
                                 {"maxModules", machine.arrays},
                                 {"maxPaths", machine.paths},
                                 {"maxLuns", std::max<std::uint64_t>(machine.luns, 1)}});
  }
  return Json::Object{{"computer", Json::Object{{"name", "made-host"}, {"domain", "storage.example"}}},
                      {"clock", Json::Object{{"kind", "virtual"}, {"now", "2026-11-19T04:50:54Z"}}},
                      {"dsms", Json::Array{Json(std::move(driver))}},
                      {"mpio", Json::Object{{"paths", MadeAdapters(machine)}}}};
}

} // namespace simhost
