#include "bench/bare_array_report.h"

#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/report/array_report_text.h"
#include "app/report/interface_type_name.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

// Holds for what makehost describes: no congestion, no adapters, no extended path recovery.

namespace {

struct Path {
  unsigned id;
  const char* state;
  unsigned long long deviceInfo;
  const char* online;
  unsigned weight;
  unsigned port, bus, target, lun;
  const char* lastGood;
  const char* previous;
  unsigned requests;
  unsigned internalState;
  char flags[6];
};

struct Lun {
  unsigned number;
  std::string wwn, disk, owner, preferred;
  const char* state;
  const char* policy;
  const char* failover;
  char ownerLetter, preferredLetter;
  char throttled, groupThrottled;
  unsigned internalState;
  const char* tas;
  const char* alb;
  std::vector<Path> paths;
};

struct ControllerPath {
  unsigned id;
  const char* state;
  const char* interface;
};

struct Controller {
  std::string serial;
  char letter, serviceMode;
  std::vector<ControllerPath> paths;
};

struct Array {
  std::string name, wwn;
  bool hasUtmLun;
  unsigned utmLun;
  std::vector<Controller> controllers;
  std::vector<Lun> luns;
};

Array gArray;

Path ReadyPath(const korvex::MpgPathEntry& entry) {
  Path path{};
  path.id = static_cast<unsigned>(entry.pathId);
  path.state = korvex::AccessStateText(entry.accessState);
  std::memcpy(&path.deviceInfo, entry.deviceInfo.data(), sizeof path.deviceInfo);
  path.online = korvex::OnlineStateText(entry.internalState);
  path.weight = entry.pathWeight;
  path.port = entry.scsiAddress.port;
  path.bus = entry.scsiAddress.path;
  path.target = entry.scsiAddress.target;
  path.lun = entry.scsiAddress.lun;
  path.lastGood = korvex::AccessStateText(entry.lastGoodState);
  path.previous = korvex::AccessStateText(entry.previousStatus);
  path.requests = entry.requestsInProgress;
  path.internalState = entry.internalState;
  for (std::size_t flag = 0; flag < sizeof path.flags; ++flag) {
    path.flags[flag] = korvex::YesNoLetter(entry.flags[flag]);
  }
  return path;
}

Lun ReadyLun(const korvex::MpgDeviceRecord& record) {
  Lun lun{};
  lun.number = record.LunNumber();
  lun.wwn.assign(record.wwn.begin(), record.wwn.end());
  lun.disk = record.diskName.data();
  lun.owner = record.owningSerialNumber.data();
  lun.preferred = record.preferredSerialNumber.data();
  lun.state = korvex::LunStateText(record.state);
  lun.policy = korvex::LoadBalancePolicyText(record.loadBalancePolicy);
  lun.failover = korvex::FailoverMethodLine(record.failoverMethod);
  lun.ownerLetter = korvex::DesignationLetter(record.owningDesignation);
  lun.preferredLetter = korvex::DesignationLetter(record.preferredDesignation);
  lun.throttled = korvex::YesNoLetter(record.throttled);
  lun.groupThrottled = korvex::YesNoLetter(record.groupIoThrottled);
  lun.internalState = record.internalState;
  lun.tas = korvex::TasBitStatusLine(record.tasBitStatus);
  lun.alb = korvex::AlbStatusLine(record.albStatus);
  for (const korvex::MpgPathEntry& path : record.PathsInUse()) {
    lun.paths.push_back(ReadyPath(path));
  }
  return lun;
}

Controller ReadyController(const korvex::TpgControllerRecord& record) {
  Controller controller{record.serialNumber.data(),
                        korvex::DesignationLetter(record.designation),
                        record.serviceMode == 1 ? 'Y' : 'N',
                        {}};
  for (const korvex::TpgPathEntry& path : record.PathsInUse()) {
    controller.paths.push_back({static_cast<unsigned>(path.pathId), korvex::ControllerPathStateText(path.pathState),
                                korvex::InterfaceTypeName(path.interfaceType)});
  }
  return controller;
}

void PrintController(const Controller& controller) {
  std::printf("    SerialNumber: %s \n", controller.serial.c_str());
  std::printf("    ------------------------\n");
  std::printf("    Designation:   %c\n", controller.letter);
  std::printf("    NumberOfPaths: %u\n", static_cast<unsigned>(controller.paths.size()));
  std::printf("        ServiceMode:  %c\n\n\n", controller.serviceMode);
  std::printf("        PathID        State            Interface\n");
  std::printf("        -----------------------------------------------------------------\n");
  for (const ControllerPath& path : controller.paths) {
    std::printf("        0x%8x    %-16.16s %s\n", path.id, path.state, path.interface);
  }
  std::printf("\n");
}

void PrintPath(const Path& path) {
  std::printf("        0x%8x    %-18.18s 0x%016llX    %s %2u\n", path.id, path.state, path.deviceInfo, path.online,
              path.weight);
  std::printf("            SCSIAddress: (%3x | %2x | %2x | %2x) \n", path.port, path.bus, path.target, path.lun);
  std::printf("            LastGoodState: %-21.21s \n", path.lastGood);
  std::printf("            PreviousStatus: %-21.21s \n", path.previous);
  std::printf("            RequestInProgress: %u \n", path.requests);
  std::printf("            InternalState: 0x%x \n", path.internalState);
  std::printf("            Flags: (IN|BR|US|IR|PR|SN:  %c:%c:%c:%c:%c:%c)\n\n", path.flags[0], path.flags[1],
              path.flags[2], path.flags[3], path.flags[4], path.flags[5]);
}

void PrintLun(const Lun& lun) {
  std::printf("    Lun # 0x%02x : %s\n    --------------------------------------\n", lun.number, lun.wwn.c_str());
  std::printf("    State: %s\n", lun.state);
  std::printf("    MPIO Disk: %s\n", lun.disk.c_str());
  std::printf("    NumberDevices: %u\n", static_cast<unsigned>(lun.paths.size()));
  std::printf("    LBPolicy: %s\n", lun.policy);
  std::printf("    FailoverMethod: %s", lun.failover);
  std::printf("    CurrentOwningController: %s (%c)\n", lun.owner.c_str(), lun.ownerLetter);
  std::printf("    PreferredController:     %s (%c)\n", lun.preferred.c_str(), lun.preferredLetter);
  std::printf("        ComponentIdentifier: %s\n", lun.wwn.c_str());
  std::printf("        Throttled: %c\n", lun.throttled);
  std::printf("        GroupIOThrottled: %c\n", lun.groupThrottled);
  std::printf("        InternalState: 0x%x\n", lun.internalState);
  std::printf("        TASBitStatus: %s", lun.tas);
  std::printf("        ALBStatus: %s\n", lun.alb);
  std::printf("        Path_ID       State              DeviceInfo            Online State    Weight\n");
  std::printf("        -----------------------------------------------------------------------------\n");
  for (const Path& path : lun.paths) {
    PrintPath(path);
  }
  std::printf("\n");
}

} // namespace

void ReadyArrayReport() {
  gArray = {};
  gArray.name = korvex::gModuleName;
  gArray.wwn.assign(korvex::gModuleWWN, korvex::gModuleWWN + 32);
  gArray.hasUtmLun = korvex::gUtmLunEnabled != 0;
  gArray.utmLun = korvex::gUtmLunNumber;
  for (std::uint32_t k = 0; k < korvex::gArrayControllerCount; ++k) {
    gArray.controllers.push_back(ReadyController(korvex::StoredController(k)));
  }
  for (std::uint32_t n = 0; n < korvex::gArrayLunCount; ++n) {
    gArray.luns.push_back(ReadyLun(korvex::StoredLun(n)));
  }
}

void PrintBareArrayReport() {
  std::printf("\nArray Information: \n=================\n");
  std::printf("    ModuleName: %s\n    WWN:  %s\n", gArray.name.c_str(), gArray.wwn.c_str());
  if (gArray.hasUtmLun) {
    std::printf("    UTM LUN enabled: Y        UTM LUN number: 0x%0X\n\n\n", gArray.utmLun);
  } else {
    std::printf("    UTM LUN enabled: N\n\n\n");
  }
  std::printf("Controller Information: \n=======================\n");
  for (const Controller& controller : gArray.controllers) {
    PrintController(controller);
  }
  std::printf("Lun Information: \n=======================\n");
  for (const Lun& lun : gArray.luns) {
    PrintLun(lun);
  }
}
