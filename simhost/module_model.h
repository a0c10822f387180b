#pragma once

#include "simhost/cim.h"
#include "simhost/module_record.h"

#include <cstdint>
#include <vector>

// The array modules behind a DSM of interface generation 1 as the description tells them.

namespace simhost {

struct ModulePath {
  ModuleRecord record;
  ModuleRecord address;
};

struct ModuleController {
  ModuleRecord record;
  std::vector<ModulePath> paths;
};

/// What a LUN has behind one controller.
struct ModuleDriveInfo {
  ModuleRecord record;
  std::vector<ModuleRecord> drives;
};

struct ModuleLun {
  ModuleRecord record;
  std::vector<std::uint8_t> wwn;
  std::vector<ModuleDriveInfo> driveInfos;
};

struct ModuleModel {
  ModuleRecord record;
  std::uint32_t id = 0;      ///< what it is asked for by
  CimValue name{};           ///< text or bytes
  bool inTransition = false; ///< its paths cannot be changed now
  std::vector<std::uint8_t> wwn{};
  std::vector<ModuleController> controllers{};
  std::vector<ModuleLun> luns{};
};

} // namespace simhost
