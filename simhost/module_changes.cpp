#include "simhost/module_changes.h"

namespace simhost {
namespace {

constexpr std::uint32_t kAdminOffline = 8;

/// The LUN's drives through a path that was taken offline.
void TakeOffline(ModuleLun& lun, const ModuleRecord& controller, const ModuleRecord& path) {
  for (ModuleDriveInfo& info : lun.driveInfos) {
    for (ModuleRecord& drive : info.drives) {
      if (drive["controller"] == controller["designation"] && drive["index"] == path["index"]) {
        drive.Set("state", kAdminOffline);
      }
    }
  }
}

void TakePathsOffline(ModuleModel& module, const DriverOptions& options) {
  for (ModuleController& controller : module.controllers) {
    for (ModulePath& path : controller.paths) {
      if (!options.IsOffline(static_cast<std::uint32_t>(path.record["id"]))) {
        continue;
      }
      path.record.Set("state", kAdminOffline);
      for (ModuleLun& lun : module.luns) {
        TakeOffline(lun, controller.record, path.record);
      }
    }
  }
}

} // namespace

ModuleModel CurrentModule(const ModuleModel& module, std::span<const std::uint32_t> owners,
                          const DriverOptions& options) {
  ModuleModel current = module;
  for (std::size_t index = 0; index < current.luns.size(); ++index) {
    current.luns[index].record.Set("owner", owners[index]);
  }
  if (!options.ChangesLuns()) {
    return current;
  }
  if (const std::optional<std::uint32_t> policy = options.Policy()) {
    current.record.Set("policy", *policy);
    for (ModuleLun& lun : current.luns) {
      lun.record.Set("policy", *policy);
    }
  }
  TakePathsOffline(current, options);
  return current;
}

PathCondition ConditionOf(const ModuleModel& module, std::uint32_t pathId) {
  for (const ModuleController& controller : module.controllers) {
    for (const ModulePath& path : controller.paths) {
      if (path.record["id"] == pathId) {
        return module.inTransition ? PathCondition::kInTransition : PathCondition::kReady;
      }
    }
  }
  return PathCondition::kUnknown;
}

} // namespace simhost
