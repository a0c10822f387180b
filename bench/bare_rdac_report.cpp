#include "bench/bare_rdac_report.h"

#include "app/report/interface_type_name.h"
#include "app/report/rdac_text.h"

#include <cstdio>
#include <string>
#include <vector>

// Holds for what makehost describes: no congestion, no path recovery, no UTM LUN, no zero handles, names of all
// policies.

namespace {

using Handle = unsigned long long;

struct Path {
  unsigned number;
  Handle directory;
  const char* state;
  unsigned id, port, bus, target;
  const char* interface;
  int requests;
};

struct Controller {
  char letter, failed, failover, service;
  Handle handle;
  unsigned numberOfPaths;
  std::vector<Path> paths;
};

struct Drive {
  unsigned number;
  Handle device;
  const char* state;
  unsigned weight, removeState, startState, powerState;
};

struct DriveInfo {
  char letter;
  unsigned drives, roundRobin;
  std::vector<Drive> paths;
};

struct Lun {
  unsigned number;
  std::string wwn;
  char owner, bootOwner, preferred, notConfigured, needsCheck, tas, notReady, busy, quiescent;
  const char* policyAndGap;
  std::vector<DriveInfo> infos;
};

struct Module {
  std::string name, wwn, firmware;
  char single, triggered, avt, restore, page2C, failover;
  unsigned objects, scanState;
  Handle handle;
  const char* policy;
  std::vector<Controller> controllers;
  std::vector<Lun> luns;
};

Module gModule;

std::string Digits(const korvex::WwnBytes& wwn) {
  std::string digits;
  for (const unsigned byte : wwn) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", byte);
    digits += pair;
  }
  return digits;
}

Controller ReadyController(const korvex::RdacInfo& info, std::uint32_t index) {
  namespace flag = korvex::controller_flag;
  const korvex::RdacController& record = *info.Controller(index);
  Controller controller{korvex::ControllerLetter(index),
                        korvex::YesNo(record.Has(flag::kFailed)),
                        korvex::YesNo(record.Has(flag::kFailoverInProgress)),
                        korvex::YesNo(record.Has(flag::kServiceMode)),
                        record.ControllerHandle,
                        record.NumberOfPaths,
                        {}};
  for (std::uint32_t i = 0; i < info.MaxPaths(); ++i) {
    const korvex::RdacPath& path = *info.Path(index, i);
    if (path.Has(korvex::path_flag::kPresent)) {
      controller.paths.push_back({i + 1, path.DirectoryHandle, korvex::RdacStateName(path.PathState), path.PathId,
                                  path.Port, path.Path, path.Target, korvex::InterfaceTypeName(path.InterfaceType),
                                  static_cast<int>(path.RequestsInProgress)});
    }
  }
  return controller;
}

DriveInfo ReadyDriveInfo(const korvex::RdacInfo& info, std::uint32_t lun, std::uint32_t controller) {
  const korvex::RdacDriveInfo& block = *info.DriveInfo(lun, controller);
  DriveInfo ready{korvex::ControllerLetter(controller), block.NumDrives, block.RoundRobinIndex, {}};
  for (std::uint32_t i = 0; i < info.MaxPaths(); ++i) {
    const korvex::RdacDrive& drive = *info.Drive(lun, controller, i);
    if (drive.HasDevice()) {
      ready.paths.push_back({i + 1, drive.LunPathDevice, korvex::RdacStateName(drive.DriveState), drive.PathWeight,
                             drive.RemoveState, drive.StartState, drive.PowerState});
    }
  }
  return ready;
}

Lun ReadyLun(const korvex::RdacInfo& info, std::uint32_t number) {
  namespace flag = korvex::lun_flag;
  static constexpr const char* kPolicies[] = {
      "RoundRobinSubset                                ", "LeastQueueDepth                                 ",
      "LeastPathWeight                                                                  "};
  const korvex::RdacLun& record = *info.Lun(number);
  const auto letter = [&record](flag::Bit bit) { return korvex::YesNo(record.Has(bit)); };
  const auto controller = [&record](flag::Bit bit) { return korvex::ControllerLetter(record.Has(bit) ? 1 : 0); };
  Lun lun{number,
          Digits(record.WWN),
          controller(flag::kCurrentOwningController),
          controller(flag::kBootOwningController),
          controller(flag::kPreferredController),
          letter(flag::kNotConfigured),
          letter(flag::kNeedsReservationCheck),
          letter(flag::kTASBitSet),
          letter(flag::kNotReady),
          letter(flag::kBusy),
          letter(flag::kQuiescent),
          kPolicies[record.LoadBalancePolicy],
          {}};
  for (std::uint32_t index = 0; index < korvex::RdacInfo::kControllers; ++index) {
    lun.infos.push_back(ReadyDriveInfo(info, number, index));
  }
  return lun;
}

void PrintModule() {
  const Module& module = gModule;
  std::printf("VRX Information:\n");
  std::printf("----------------\n");
  std::printf("      ModuleName: %-32s         SingleController: %c\n", module.name.c_str(), module.single);
  std::printf(" VirtualTargetID: 0x000                                       ScanTriggered: %c\n", module.triggered);
  std::printf("     ObjectCount: 0x%03x                                          AVTEnabled: %c\n", module.objects,
              module.avt);
  std::printf("             WWN: %s               RestoreCfg: %c\n", module.wwn.c_str(), module.restore);
  std::printf("    ModuleHandle: 0x%016llX                          Page2CSubPage: %c\n", module.handle, module.page2C);
  std::printf(" FirmwareVersion: %-18s                         FailoverMethod: %c\n", module.firmware.c_str(),
              module.failover);
  std::printf("   ScanTaskState: 0x%08x\n", module.scanState);
  std::printf("        LBPolicy: %s\n\n", module.policy);
}

void PrintController(const Controller& controller) {
  std::printf("\nController '%c' Status:\n", controller.letter);
  std::printf("-----------------------\n");
  std::printf("ControllerHandle: 0x%016llX                      ControllerPresent: Y\n", controller.handle);
  std::printf("    UTMLunExists: N                                                  Failed: %c\n", controller.failed);
  std::printf("   NumberOfPaths: %u                                          FailoverInProg: %c\n",
              controller.numberOfPaths, controller.failover);
  std::printf("                                                                ServiceMode: %c\n", controller.service);
  for (const Path& path : controller.paths) {
    std::printf("\n    Path #%u\n", path.number);
    std::printf("    ---------\n");
    std::printf(" DirectoryVertex: 0x%016llX                                Present: Y\n", path.directory);
    std::printf("       PathState: %-21.21s\n", path.state);
    std::printf("          PathId: 0x%x (P%02uP%02uI%02u)\n", path.id, path.port, path.bus, path.target);
    std::printf("   InterfaceType: %-21.21s\n", path.interface);
    std::printf("   ReqInProgress: %d\n", path.requests);
  }
  std::printf("\n");
}

void PrintDriveInfo(const DriveInfo& info) {
  std::printf("    Controller '%c' Path\n", info.letter);
  std::printf("    --------------------\n");
  std::printf("   NumLunObjects: %u                                         RoundRobinIndex: %u\n", info.drives,
              info.roundRobin);
  for (const Drive& drive : info.paths) {
    std::printf("         Path #%u: LunPathDevice: 0x%016llX\n", drive.number, drive.device);
    std::printf("                       DevState: %-21.21s\n", drive.state);
    std::printf("                     PathWeight: %u\n", drive.weight);
    std::printf("                    RemoveState: 0x%x  StartState: 0x%x  PowerState: 0x%x\n", drive.removeState,
                drive.startState, drive.powerState);
  }
  std::printf("\n");
}

void PrintLun(const Lun& lun) {
  std::printf("%s    Lun #%u - WWN: %s\n", lun.number != 0 ? "\n" : "", lun.number, lun.wwn.c_str());
  std::printf("    ----------------\n");
  std::printf("       LunObject: 0x0                                     CurrentOwningPath: %c\n", lun.owner);
  std::printf("  RemoveEligible: N                                          BootOwningPath: %c\n", lun.bootOwner);
  std::printf("   NotConfigured: %c                                           PreferredPath: %c\n", lun.notConfigured,
              lun.preferred);
  std::printf("        DevState: N/A                                 NeedsReservationCheck: %c\n", lun.needsCheck);
  std::printf("        LBPolicy: %sTASBitSet: %c\n", lun.policyAndGap, lun.tas);
  std::printf("                                                                   NotReady: %c\n", lun.notReady);
  std::printf("                                                                       Busy: %c\n", lun.busy);
  std::printf("                                                                  Quiescent: %c\n\n", lun.quiescent);
  for (const DriveInfo& info : lun.infos) {
    PrintDriveInfo(info);
  }
}

} // namespace

void ReadyRdacReport(const korvex::RdacInfoRequest& request) {
  namespace flag = korvex::module_flag;
  const korvex::RdacInfo& info = request.info;
  const korvex::RdacModule& record = info.Module();
  const auto letter = [&record](flag::Bit bit) { return korvex::YesNo(record.Has(bit)); };
  gModule = {request.moduleName.data(),
             Digits(record.WWN),
             korvex::FirmwareText(record.FirmwareVersion).c_str(),
             letter(flag::kSingleController),
             letter(flag::kScanTriggered),
             letter(flag::kAVTEnabled),
             letter(flag::kRestoreCfg),
             letter(flag::kPage2CSubPage),
             record.FailoverMethod == 0 ? 'C' : 'L',
             record.ObjectCount,
             record.ScanTaskState,
             record.ModuleHandle,
             korvex::RdacPolicyName(record.LoadBalancePolicy),
             {},
             {}};
  for (std::uint32_t index = 0; index < korvex::RdacInfo::kControllers; ++index) {
    gModule.controllers.push_back(ReadyController(info, index));
  }
  for (std::uint32_t number = 0; number < info.MaxLuns(); ++number) {
    gModule.luns.push_back(ReadyLun(info, number));
  }
}

void PrintBareRdacReport() {
  PrintModule();
  for (const Controller& controller : gModule.controllers) {
    PrintController(controller);
  }
  std::printf("\n\nLun Information\n");
  std::printf("---------------\n");
  for (const Lun& lun : gModule.luns) {
    PrintLun(lun);
  }
}
