#include "simhost/array_description.h"

#include "simhost/array_words.h"
#include "simhost/module_properties.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>

namespace simhost {
namespace {

constexpr CodeName kPathStates[] = {{"working", 1}, {"failback", 2}, {"pending remove", 3}, {"failed", 4}};
constexpr CodeName kLunStates[] = {{"normal", 1}, {"pending", 2}, {"failed", 3}};
constexpr CodeName kPolicies[] = {{"fail over only", 1},    {"round robin", 2},    {"round robin with subset", 3},
                                  {"least queue depth", 4}, {"weighted paths", 5}, {"least blocks", 6},
                                  {"vendor specific", 7}};
constexpr CodeName kFailovers[] = {{"not supported", 0},
                                   {"TPGS implicit", 1},
                                   {"TPGS explicit", 2},
                                   {"mode select implicit", 3},
                                   {"mode select explicit", 4}};
constexpr CodeName kAccessStates[] = {{"active/optimized", 0}, {"active/unoptimized", 1}, {"standby", 2},
                                      {"unavailable", 3},      {"transitioning", 15},     {"failed", 18}};
constexpr CodeName kTasStates[] = {
    {"not set", 0}, {"set", 1}, {"set in progress", 2}, {"conflict", 3}, {"not supported", 4}};
constexpr CodeName kAlbStates[] = {{"not supported", 0}, {"not active", 1}, {"active", 2}};
constexpr CodeName kPathConditions[] = {{"online", 1}, {"administratively offline", 2}, {"offline", 4}, {"unknown", 0}};

/// A flag as the driver carries it: true, false or any byte.
std::uint8_t FlagByte(const Node& flag, std::uint8_t fallback) {
  static constexpr CodeName kNone[] = {{"no", 0}, {"yes", 1}};
  if (!flag.IsAbsent() && flag.Value()->IfBoolean() != nullptr) {
    return flag.Flag() ? 1 : 0;
  }
  return flag.Code<std::uint8_t>(kNone, 255, fallback);
}

std::optional<std::uint8_t> OptionalCode(const Node& code, std::span<const CodeName> words) {
  return code.IsAbsent() ? std::nullopt : std::optional(code.Code<std::uint8_t>(words, 255));
}

std::string Formatted(const char* format, unsigned first, unsigned second) {
  char text[64];
  // Every format comes from this file.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::snprintf(text, sizeof text, format, first, second);
#pragma GCC diagnostic pop
  return text;
}

/// Largest record that a description may hold.
constexpr std::size_t kMaxRawRecord = 1U << 20;
constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
constexpr std::uint64_t kMax64 = UINT64_MAX;

void ReadRecordKeys(Members& keys, RecordModel& record) {
  if (const Node raw = keys["raw"]; !raw.IsAbsent()) {
    record.raw = raw.Bytes(kMaxRawRecord);
  }
  if (const Node size = keys["size"]; !size.IsAbsent()) {
    record.size = size.Unsigned<std::uint32_t>(0, kMax32);
  }
}

CongestionModel ReadCongestion(const Node& congestion) {
  CongestionModel model;
  ReadMembers(congestion, [&model](Members& keys) {
    model.present = FlagByte(keys["present"], 1);
    model.start = keys["start"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.intervals = keys["intervals"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.ioExceeded = keys["ioExceeded"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.population = keys["population"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.averageResponse = keys["averageResponse"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.totalResponse = keys["totalResponse"].Unsigned<std::uint32_t>(0, kMax32, 0);
  });
  return model;
}

ControllerPathModel ReadControllerPath(const Node& path, std::uint64_t defaultId) {
  ControllerPathModel model;
  ReadMembers(path, [&](Members& keys) {
    ModuleRecord::PassOver(ModulePathProperties(), keys);
    ModuleRecord::PassOver(ModuleAddressProperties(), keys);
    model.id = keys["id"].Unsigned<std::uint64_t>(0, kMax64, defaultId);
    model.extension = keys["extension"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.state = keys["state"].Code<std::uint8_t>(kPathStates, 255, 1);
    model.interfaceType = keys["interface"].Code<std::uint8_t>(kInterfaces, 255, 0);
    if (const Node congestion = keys["congestion"]; !congestion.IsAbsent()) {
      model.congestion = ReadCongestion(congestion);
    }
  });
  return model;
}

/// Path identifiers differ between arrays, controllers and paths.
std::uint64_t DefaultPathId(std::uint8_t arrayId, std::size_t controller, std::size_t path) {
  return 0x77000000U | (std::uint64_t{arrayId} << 16) | (static_cast<std::uint64_t>(controller & 0xFF) << 8) |
         (path & 0xFF);
}

ControllerModel ReadController(const Node& controller, std::uint8_t arrayId, std::size_t index) {
  ControllerModel model;
  ReadMembers(controller, [&](Members& keys) {
    ModuleRecord::PassOver(ModuleControllerProperties(), keys);
    ReadRecordKeys(keys, model);
    model.serial = keys["serial"].NarrowText(
        10, Formatted("SN%05u%03u", static_cast<unsigned>(arrayId), static_cast<unsigned>(index % 1000)));
    model.designation =
        keys["designation"].Code<std::uint8_t>(kDesignations, 255, static_cast<std::uint8_t>(index & 0xFF));
    model.serviceMode = FlagByte(keys["serviceMode"], 0);
    model.state = keys["state"].Code<std::uint8_t>(kControllerStates, 255, 1);
    const Node paths = keys["paths"];
    const std::vector<Node> described = paths.Elements(kPathSlots);
    for (std::size_t place = 0; place < (paths.IsAbsent() ? 2 : described.size()); ++place) {
      model.paths.push_back(ReadControllerPath(paths.IsAbsent() ? Node(paths.Path()) : described[place],
                                               DefaultPathId(arrayId, index, place)));
    }
    model.pathsInUse = keys["pathsInUse"].Unsigned<std::uint8_t>(0, 255, static_cast<std::uint8_t>(model.paths.size()));
  });
  return model;
}

LunPathModel ReadLunPath(const Node& path, const LunPathModel& like) {
  LunPathModel model = like;
  ReadMembers(path, [&model](Members& keys) {
    ModuleRecord::PassOver(ModuleDriveProperties(), keys);
    model.id = keys["id"].Unsigned<std::uint64_t>(0, kMax64, model.id);
    model.extension = keys["extension"].Unsigned<std::uint32_t>(0, kMax32, model.extension);
    model.controller = keys["controller"].Code<std::uint8_t>(kDesignations, 255, model.controller);
    model.state = OptionalCode(keys["state"], kAccessStates);
    model.lastState = OptionalCode(keys["lastGoodState"], kAccessStates);
    model.previous = OptionalCode(keys["previousStatus"], kAccessStates);
    model.deviceInfo[0] = keys["deviceInfo"].Unsigned<std::uint64_t>(0, kMax64, model.deviceInfo[0]);
    model.deviceInfo[1] = keys["deviceInfoRest"].Unsigned<std::uint64_t>(0, kMax64, model.deviceInfo[1]);
    model.weight = keys["weight"].Unsigned<std::uint8_t>(0, 255, 0);
    model.addressLength = keys["addressLength"].Unsigned<std::uint32_t>(0, kMax32, model.addressLength);
    model.port = keys["port"].Unsigned<std::uint8_t>(0, 255, model.port);
    model.path = keys["path"].Unsigned<std::uint8_t>(0, 255, model.path);
    model.target = keys["target"].Unsigned<std::uint8_t>(0, 255, model.target);
    if (const Node lun = keys["lun"]; !lun.IsAbsent()) {
      model.lun = lun.Unsigned<std::uint8_t>(0, 255);
    }
    model.requests = keys["requestsInProgress"].Unsigned<std::uint16_t>(0, 65535, 0);
    model.internalState = keys["condition"].Code<std::uint32_t>(kPathConditions, kMax32, 1);
    const std::vector<Node> flags = keys["flags"].Elements(model.flags.size());
    for (std::size_t flag = 0; flag < flags.size(); ++flag) {
      model.flags[flag] = FlagByte(flags[flag], 0);
    }
  });
  return model;
}

/// How many paths of each controller a LUN is reached through by default: all, or where that is more than a LUN can
/// have, as even a share of each as there is.
std::vector<std::size_t> PathShares(const ArrayModel& array) {
  std::vector<std::size_t> shares(array.controllers.size());
  std::size_t left = kPathSlots;
  for (std::size_t place = 0; place < kPathSlots; ++place) {
    for (std::size_t controller = 0; controller < shares.size() && left != 0; ++controller) {
      if (place < array.controllers[controller].paths.size()) {
        ++shares[controller];
        --left;
      }
    }
  }
  return shares;
}

/// A LUN is reached through every path of every controller unless its paths are described.
std::vector<LunPathModel> DefaultLunPaths(const ArrayModel& array, std::size_t lunIndex) {
  std::vector<LunPathModel> paths;
  const std::vector<std::size_t> shares = PathShares(array);
  for (std::size_t index = 0; index < shares.size(); ++index) {
    const ControllerModel& controller = array.controllers[index];
    for (std::size_t place = 0; place < shares[index]; ++place) {
      LunPathModel path;
      path.id = controller.paths[place].id;
      path.extension = controller.paths[place].extension;
      path.controller = controller.designation;
      path.deviceInfo[0] = 0xFFFFE00000000000U + (static_cast<std::uint64_t>(lunIndex) << 12) + (paths.size() << 4);
      path.port = static_cast<std::uint8_t>(2 + place);
      path.target = controller.designation;
      paths.push_back(path);
    }
  }
  return paths;
}

std::string SerialOf(const ArrayModel& array, std::uint8_t designation) {
  for (const ControllerModel& controller : array.controllers) {
    if (controller.designation == designation) {
      return controller.serial;
    }
  }
  return {};
}

void ReadLunPaths(const Node& paths, const std::vector<LunPathModel>& defaults, LunModel& lun) {
  if (paths.IsAbsent()) {
    lun.paths = defaults;
    return;
  }
  for (const Node& path : paths.Elements(kPathSlots)) {
    const std::size_t place = lun.paths.size();
    lun.paths.push_back(ReadLunPath(path, place < defaults.size() ? defaults[place] : LunPathModel()));
  }
}

void ReadOwnership(Members& keys, const ArrayModel& array, std::size_t index, LunModel& lun) {
  const std::uint8_t home =
      array.controllers.empty() ? 0 : array.controllers[index % array.controllers.size()].designation;
  lun.preferred = keys["preferred"].Code<std::uint8_t>(kDesignations, 255, home);
  lun.owner = keys["owner"].Code<std::uint8_t>(kDesignations, 255, lun.preferred);
  lun.preferredSerial = keys["preferredSerial"].NarrowText(10, SerialOf(array, lun.preferred));
  lun.ownerSerial = keys["ownerSerial"].NarrowText(10, SerialOf(array, lun.owner));
}

/// The disk's number with as much of "MPIO Disk" as the field of 10 characters has room for.
std::string DefaultDisk(std::size_t index) {
  const std::string number = std::to_string(index);
  static constexpr const char* kNames[] = {"MPIO Disk", "MPIO Dsk", "MPIO D"};
  return kNames[std::min<std::size_t>(number.size(), 3) - 1] + number;
}

LunModel ReadLun(const Node& lun, const ArrayModel& array, std::size_t index) {
  LunModel model;
  ReadMembers(lun, [&](Members& keys) {
    ModuleRecord::PassOver(ModuleLunProperties(), keys);
    keys["driveInfos"];
    ReadRecordKeys(keys, model);
    model.wwn = keys["wwn"].NarrowText(
        32, Formatted("60000000000000000000000%04x%05x", array.id, static_cast<unsigned>(index & 0xFFFFF)));
    model.number = keys["number"].Unsigned<std::uint8_t>(0, 255, static_cast<std::uint8_t>(index & 0xFF));
    model.vendorProduct = keys["vendorProduct"].Text(25, L"VENDOR  PRODUCT");
    model.state = keys["state"].Code<std::uint8_t>(kLunStates, 255, 1);
    model.failover = keys["failover"].Code<std::uint8_t>(kFailovers, 255, 2);
    model.policy = keys["policy"].Code<std::uint8_t>(kPolicies, 255, 3);
    model.persistThroughPowerLoss = FlagByte(keys["persistThroughPowerLoss"], 0);
    model.persistSent = keys["persistSent"].Unsigned<std::uint8_t>(0, 255, 0);
    ReadOwnership(keys, array, index, model);
    model.disk = keys["disk"].NarrowText(10, DefaultDisk(index));
    model.throttled = FlagByte(keys["throttled"], 0);
    model.groupThrottled = FlagByte(keys["groupThrottled"], 0);
    model.internalState = keys["internalState"].Unsigned<std::uint32_t>(0, kMax32, 0);
    model.tas = keys["tas"].Code<std::uint32_t>(kTasStates, kMax32, 0);
    model.alb = keys["alb"].Code<std::uint8_t>(kAlbStates, 255, 0);
    ReadLunPaths(keys["paths"], DefaultLunPaths(array, index), model);
    model.pathsInUse = keys["pathsInUse"].Unsigned<std::uint8_t>(0, 255, static_cast<std::uint8_t>(model.paths.size()));
  });
  return model;
}

/// A device record for each path of each LUN.
std::vector<DeviceModel> DefaultDevices(const ArrayModel& array) {
  std::vector<DeviceModel> devices;
  for (const LunModel& lun : array.luns) {
    for (const LunPathModel& path : lun.paths) {
      DeviceModel device;
      device.controller = path.controller;
      device.port = path.port;
      device.path = path.path;
      device.target = path.target;
      device.lun = path.lun.value_or(lun.number);
      devices.push_back(device);
    }
  }
  return devices;
}

DeviceModel ReadDevice(const Node& device) {
  static constexpr CodeName kControllers[] = {{"A", 0}, {"B", 1}, {"none", 255}};
  DeviceModel model;
  ReadMembers(device, [&model](Members& keys) {
    ReadRecordKeys(keys, model);
    model.state = keys["state"].Unsigned<std::uint8_t>(0, 255, 1);
    model.controller = keys["controller"].Code<std::uint8_t>(kControllers, 255, 0);
    model.port = keys["port"].Unsigned<std::uint8_t>(0, 255, 0);
    model.path = keys["path"].Unsigned<std::uint8_t>(0, 255, 0);
    model.target = keys["target"].Unsigned<std::uint8_t>(0, 255, 0);
    model.lun = keys["lun"].Unsigned<std::uint8_t>(0, 255, 0);
  });
  return model;
}

/// The codes of the controllers' paths: those of the first controller in the first half, those of the second in the
/// other.
void ReadInterfaceTypes(const Node& codes, ArrayModel& array) {
  array.interfaceTypes.fill(kUnusedSlot);
  for (std::size_t k = 0; k < std::min<std::size_t>(array.controllers.size(), 2); ++k) {
    const std::vector<ControllerPathModel>& paths = array.controllers[k].paths;
    for (std::size_t place = 0; place < std::min(paths.size(), kPathSlots); ++place) {
      array.interfaceTypes[k * kPathSlots + place] = paths[place].interfaceType;
    }
  }
  if (codes.IsAbsent()) {
    return;
  }
  array.interfaceTypes.fill(kUnusedSlot);
  const std::vector<Node> described = codes.Elements(array.interfaceTypes.size());
  for (std::size_t slot = 0; slot < described.size(); ++slot) {
    array.interfaceTypes[slot] = described[slot].Code<std::uint8_t>(kInterfaces, 255);
  }
}

/// More than the driver would ever have, so that drivers that lie can be described.
constexpr std::size_t kMaxControllers = 256;
constexpr std::size_t kMaxLuns = 4096;
constexpr std::size_t kMaxDevices = 65536;

void ReadControllers(const Node& controllers, ArrayModel& array) {
  const std::vector<Node> described = controllers.Elements(kMaxControllers);
  for (std::size_t k = 0; k < (controllers.IsAbsent() ? 2 : described.size()); ++k) {
    array.controllers.push_back(
        ReadController(controllers.IsAbsent() ? Node(controllers.Path()) : described[k], array.id, k));
  }
}

void ReadDevices(const Node& devices, ArrayModel& array) {
  if (devices.IsAbsent()) {
    array.devices = DefaultDevices(array);
    return;
  }
  for (const Node& device : devices.Elements(kMaxDevices)) {
    array.devices.push_back(ReadDevice(device));
  }
}

} // namespace

ArrayModel ReadArray(const Node& array, std::size_t index) {
  ArrayModel model;
  ReadMembers(array, [&](Members& keys) {
    ModuleRecord::PassOver(ModuleProperties(), keys);
    ReadRecordKeys(keys, model);
    model.id = keys["id"].Unsigned<std::uint8_t>(0, 255, static_cast<std::uint8_t>(index & 0xFF));
    model.wwn = keys["wwn"].NarrowText(32, Formatted("600000000000000000000000%04x%04x", model.id, 0));
    model.name = keys["name"].Text(4096, L"array-" + std::to_wstring(model.id));
    model.extendedPathRecovery = FlagByte(keys["extendedPathRecovery"], 0);
    const Node utmLun = keys["utmLun"];
    model.inTransition = keys["inTransition"].Flag(false);
    model.utmLunEnabled = FlagByte(keys["utmLunEnabled"], utmLun.IsAbsent() ? 0 : 1);
    model.utmLunNumber = utmLun.Unsigned<std::uint8_t>(0, 255, 0);
    ReadControllers(keys["controllers"], model);
    ReadInterfaceTypes(keys["interfaceTypes"], model);
    for (const Node& lun : keys["luns"].Elements(kMaxLuns)) {
      model.luns.push_back(ReadLun(lun, model, model.luns.size()));
    }
    ReadDevices(keys["devices"], model);
    model.announcedLuns =
        keys["announcedLuns"].Unsigned<std::uint32_t>(0, kMax32, static_cast<std::uint32_t>(model.luns.size()));
    model.announcedControllers = keys["announcedControllers"].Unsigned<std::uint32_t>(
        0, kMax32, static_cast<std::uint32_t>(model.controllers.size()));
  });
  return model;
}

} // namespace simhost
