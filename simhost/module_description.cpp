#include "simhost/module_description.h"

#include "simhost/array_words.h"
#include "simhost/module_properties.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace simhost {
namespace {

/// More than a driver would ever have, so that drivers that lie can be described.
constexpr std::size_t kMaxControllers = 256;
constexpr std::size_t kMaxPaths = 4096;
constexpr std::size_t kMaxLuns = 4096;
constexpr std::size_t kMaxWwn = 4096;
constexpr std::size_t kMaxName = 4096;

/// Identifiers differ between arrays, controllers and paths.
std::uint64_t DefaultPathId(std::uint64_t module, std::uint64_t controller, std::uint64_t path) {
  return 0x77000000U | ((module & 0xFF) << 16) | ((controller & 0xFF) << 8) | (path & 0xFF);
}

std::uint64_t ModuleHandle(std::uint64_t module) {
  return 0xFFFFFA8000000000U + (((module & 0xFFFF) + 1) << 20);
}

std::uint64_t ControllerHandle(std::uint64_t module, std::uint64_t controller) {
  return ModuleHandle(module) + (((controller & 0x7F) + 1) << 12);
}

std::uint64_t DeviceHandle(std::uint64_t module, std::uint64_t lun, std::uint64_t controller, std::uint64_t path) {
  return 0xFFFFE00000000000U + ((module & 0xFFFF) << 28) + ((lun & 0xFFF) << 16) + ((controller & 0xF) << 12) +
         ((path & 0xFF) << 4);
}

/// 16 bytes that begin like a registered identifier and end with `low`, highest byte first.
std::vector<std::uint8_t> DefaultWwn(std::uint64_t low) {
  std::vector<std::uint8_t> wwn(16);
  wwn[0] = 0x60;
  for (std::size_t byte = 0; byte < sizeof low; ++byte) {
    wwn[15 - byte] = static_cast<std::uint8_t>(low >> (8 * byte));
  }
  return wwn;
}

std::vector<std::uint8_t> ReadWwn(const Node& wwn, std::uint64_t low) {
  return wwn.IsAbsent() ? DefaultWwn(low) : wwn.Bytes(kMaxWwn);
}

/// A text (also {"units": ...}), or {"bytes": ...}.
CimValue ReadName(const Node& name, std::uint32_t id) {
  if (name.IsAbsent()) {
    return L"array-" + std::to_wstring(id);
  }
  if (name.Value()->Find("bytes") == nullptr) {
    return name.Text(kMaxName);
  }
  CimValue bytes;
  ReadMembers(name, [&bytes](Members& keys) { bytes = CimValue::Bytes(keys["bytes"].Bytes(kMaxName)); });
  return bytes;
}

/// The elements of a list, or so many absent ones when it is not described.
std::vector<Node> ElementsOr(const Node& list, std::size_t most, std::size_t count) {
  return list.IsAbsent() ? std::vector<Node>(count, Node(list.Path())) : list.Elements(most);
}

ModulePath ReadPath(const Node& path, const ModuleRecord& controller, std::uint32_t moduleId, std::size_t place) {
  const std::uint64_t designation = controller["designation"];
  ModulePath model{ModuleRecord(ModulePathProperties()), ModuleRecord(ModuleAddressProperties())};
  model.record.Set("index", place)
      .Set("handle", ControllerHandle(moduleId, designation) + ((place + 1) << 4))
      .Set("id", DefaultPathId(moduleId, designation, place));
  model.address.Set("port", 2 + place).Set("target", designation);
  ReadMembers(path, [&model](Members& keys) {
    model.record.Read(keys);
    model.address.Read(keys);
  });
  return model;
}

/// What the controllers and LUNs of an array take over from it.
struct ArrayWide {
  std::uint32_t id = 0;
  ModuleRecord utmLun;
  std::uint64_t policy = 0;
  bool hasCongestion = false;
};

ModuleController ReadController(const Node& controller, ArrayWide& array, std::size_t place) {
  ModuleController model{ModuleRecord(ModuleControllerProperties()), {}};
  ModuleRecord& record = model.record;
  ReadMembers(controller, [&](Members& keys) {
    record.Set("moduleId", array.id)
        .Set("designation", place)
        .Set("utmLun", array.utmLun["utmLun"])
        .Set("utmLunEnabled", array.utmLun["utmLunEnabled"])
        .Set("failed", keys["state"].Code<std::uint64_t>(kControllerStates, 255, 1) == 4 ? 1 : 0);
    record.Read(keys);
    record.Follow(keys, "handle", ControllerHandle(array.id, record["designation"]));
    for (const Node& path : ElementsOr(keys["paths"], kMaxPaths, 2)) {
      model.paths.push_back(ReadPath(path, record, array.id, model.paths.size()));
      array.hasCongestion |= !path.IsAbsent() && path.Value()->Find("congestion") != nullptr;
    }
    record.Follow(keys, "pathsInUse", model.paths.size());
  });
  return model;
}

/// What the drives of a LUN follow from.
struct LunPlace {
  const ModuleModel& array;
  std::size_t place;
  bool isUtmLun;
};

const ModulePath* FindPath(const ModuleModel& array, std::uint64_t controller, std::uint64_t index) {
  for (const ModuleController& described : array.controllers) {
    for (const ModulePath& path : described.paths) {
      if (described.record["designation"] == controller && path.record["index"] == index) {
        return &path;
      }
    }
  }
  return nullptr;
}

/// The LUN's drive through that path, in the path's state; none: a path that the controller does not have.
ModuleRecord DefaultDrive(const LunPlace& lun, std::uint64_t controller, std::uint64_t index, const ModulePath* path) {
  ModuleRecord drive(ModuleDriveProperties());
  drive.Set("moduleId", lun.array.id)
      .Set("controller", controller)
      .Set("index", index)
      .Set(lun.isUtmLun ? "utmDevice" : "device", DeviceHandle(lun.array.id, lun.place, controller, index))
      .Set("state", path != nullptr ? path->record["state"] : 0);
  return drive;
}

/// `drives` are those before it in its list, which its default path index follows from.
ModuleRecord ReadDrive(const Node& node, const LunPlace& lun, std::uint64_t defaultController,
                       const std::vector<ModuleRecord>& drives) {
  ModuleRecord drive(ModuleDriveProperties());
  ReadMembers(node, [&](Members& keys) {
    const auto controller = keys["controller"].Code<std::uint64_t>(kDesignations, UINT32_MAX, defaultController);
    const auto before =
        static_cast<std::uint64_t>(std::count_if(drives.begin(), drives.end(), [controller](const ModuleRecord& other) {
          return other["controller"] == controller;
        }));
    const auto index = keys["index"].Unsigned<std::uint64_t>(0, UINT32_MAX, before);
    drive = DefaultDrive(lun, controller, index, FindPath(lun.array, controller, index));
    drive.Read(keys);
  });
  return drive;
}

/// A drive for each path of each controller unless they are described.
std::vector<ModuleRecord> ReadDrives(const Node& paths, const LunPlace& lun) {
  std::vector<ModuleRecord> defaults;
  for (const ModuleController& controller : lun.array.controllers) {
    for (const ModulePath& path : controller.paths) {
      defaults.push_back(DefaultDrive(lun, controller.record["designation"], path.record["index"], &path));
    }
  }
  if (paths.IsAbsent()) {
    return defaults;
  }
  std::vector<ModuleRecord> drives;
  for (const Node& path : paths.Elements(kMaxPaths)) {
    const std::uint64_t controller = drives.size() < defaults.size() ? defaults[drives.size()]["controller"] : 0;
    drives.push_back(ReadDrive(path, lun, controller, drives));
  }
  return drives;
}

std::vector<ModuleRecord> DrivesBehind(const std::vector<ModuleRecord>& drives, std::uint64_t controller) {
  std::vector<ModuleRecord> behind;
  std::copy_if(drives.begin(), drives.end(), std::back_inserter(behind),
               [controller](const ModuleRecord& drive) { return drive["controller"] == controller; });
  return behind;
}

ModuleDriveInfo ReadDriveInfo(const Node& node, const LunPlace& lun, const std::vector<ModuleRecord>& drives,
                              std::uint64_t defaultController) {
  ModuleDriveInfo info{ModuleRecord(ModuleDriveInfoProperties()), {}};
  ReadMembers(node, [&](Members& keys) {
    info.record.Set("moduleId", lun.array.id).Set("controller", defaultController);
    info.record.Read(keys);
    const std::uint64_t controller = info.record["controller"];
    const Node paths = keys["paths"];
    if (paths.IsAbsent()) {
      info.drives = DrivesBehind(drives, controller);
    }
    for (const Node& path : paths.Elements(kMaxPaths)) {
      info.drives.push_back(ReadDrive(path, lun, controller, info.drives));
    }
    info.record.Follow(keys, "announcedDrives", info.drives.size());
  });
  return info;
}

/// The controllers that a LUN has drives behind: those of the array, then others that its paths name.
std::vector<std::uint64_t> ControllersOf(const ModuleModel& array, const std::vector<ModuleRecord>& drives) {
  std::vector<std::uint64_t> controllers;
  const auto add = [&controllers](std::uint64_t controller) {
    if (std::find(controllers.begin(), controllers.end(), controller) == controllers.end()) {
      controllers.push_back(controller);
    }
  };
  for (const ModuleController& controller : array.controllers) {
    add(controller.record["designation"]);
  }
  for (const ModuleRecord& drive : drives) {
    add(drive["controller"]);
  }
  return controllers;
}

void ReadDriveInfos(Members& keys, const LunPlace& place, ModuleLun& lun) {
  const std::vector<ModuleRecord> drives = ReadDrives(keys["paths"], place);
  const std::vector<std::uint64_t> controllers = ControllersOf(place.array, drives);
  for (const Node& info : ElementsOr(keys["driveInfos"], kMaxControllers, controllers.size())) {
    const std::size_t at = lun.driveInfos.size();
    lun.driveInfos.push_back(ReadDriveInfo(info, place, drives, at < controllers.size() ? controllers[at] : at));
  }
  lun.record.Follow(keys, "announcedDriveInfos", lun.driveInfos.size());
}

ModuleLun ReadLun(const Node& node, const ModuleModel& array, const ArrayWide& wide) {
  ModuleLun lun{ModuleRecord(ModuleLunProperties()), {}, {}};
  ModuleRecord& record = lun.record;
  const std::size_t place = array.luns.size();
  ReadMembers(node, [&](Members& keys) {
    const std::size_t count = array.controllers.size();
    record.Set("moduleId", wide.id)
        .Set("number", place)
        .Set("preferred", count == 0 ? 0 : array.controllers[place % count].record["designation"])
        .Set("policy", wide.policy)
        .Set("ownershipTransfer", keys.Has("ownershipTransferAttempts") ? 1 : 0);
    record.Read(keys);
    record.Follow(keys, "owner", record["preferred"]).Follow(keys, "bootOwner", record["preferred"]);
    const bool isUtmLun = (wide.utmLun["utmLunEnabled"] & 1) != 0 && record["number"] == wide.utmLun["utmLun"];
    record.Follow(keys, "isUtmLun", isUtmLun ? 1 : 0);
    lun.wwn = ReadWwn(keys["wwn"], (std::uint64_t{wide.id} & 0xFFFF) << 20 | place);
    ReadDriveInfos(keys, {array, place, record["isUtmLun"] != 0}, lun);
  });
  return lun;
}

std::size_t CountDrives(const ModuleModel& array) {
  std::size_t drives = 0;
  for (const ModuleLun& lun : array.luns) {
    for (const ModuleDriveInfo& info : lun.driveInfos) {
      drives += info.drives.size();
    }
  }
  return drives;
}

/// The array's own numbers, but for those that follow from its controllers and LUNs.
void ReadNumbers(Members& keys, ModuleModel& model) {
  ModuleRecord& record = model.record;
  record.Set("moduleId", model.id).Set("handle", ModuleHandle(model.id));
  record.Read(keys);
  record.Follow(keys, "extendedPathRecovery", keys.Has("controllerPathLoss") || keys.Has("failoverThreshold") ? 1 : 0);
}

} // namespace

ModuleModel ReadModule(const Node& array, std::size_t place) {
  ModuleModel model{ModuleRecord(ModuleProperties())};
  ReadMembers(array, [&](Members& keys) {
    model.id = keys["id"].Unsigned<std::uint32_t>(0, UINT32_MAX, static_cast<std::uint32_t>(place));
    model.name = ReadName(keys["name"], model.id);
    model.wwn = ReadWwn(keys["wwn"], (std::uint64_t{model.id} & 0xFFFF) << 16);
    model.inTransition = keys["inTransition"].Flag(false);
    ReadNumbers(keys, model);
    ArrayWide wide{model.id, ModuleRecord(ModuleUtmLunProperties()), model.record["policy"]};
    wide.utmLun.Set("utmLunEnabled", keys.Has("utmLun") ? 1 : 0).Read(keys);
    for (const Node& controller : ElementsOr(keys["controllers"], kMaxControllers, 2)) {
      model.controllers.push_back(ReadController(controller, wide, model.controllers.size()));
    }
    for (const Node& lun : keys["luns"].Elements(kMaxLuns)) {
      model.luns.push_back(ReadLun(lun, model, wide));
    }
    model.record.Follow(keys, "singleController", model.controllers.size() == 1 ? 1 : 0)
        .Follow(keys, "pathCongestion", wide.hasCongestion ? 1 : 0)
        .Follow(keys, "objectCount", CountDrives(model));
  });
  return model;
}

} // namespace simhost
