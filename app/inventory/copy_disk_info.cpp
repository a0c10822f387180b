#include "app/channel/channel.h"
#include "app/cli/console/trace.h"
#include "app/inventory/drive_info_walk.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/rdac_properties.h"

namespace korvex {

namespace {

/// What the walk over the LUNs works with.
struct DiskClasses {
  OrbWmiClass list;
  OrbWmiClass disk;
  OrbWmiClass driveList;
  OrbWmiClass drive;
  OrbWmiEnumerator answer;
};

/// False after a trace line.
bool Open(DiskClasses& classes, OrbWmiVariant& answer) {
  OrbWmiConnection& connection = gDsmChannel->connection;
  if (classes.list.Initialize(connection, L"VRXDSM_DISKINFO_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_DISKINFO_LIST\n");
    return false;
  }
  if (classes.disk.Initialize(connection, L"VRXDSM_DISKINFO") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_DISKINFO\n");
    return false;
  }
  if (classes.driveList.Initialize(connection, L"VRXDSM_DRIVEINFO_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_DRIVEINFO_LIST\n");
    return false;
  }
  if (classes.drive.Initialize(connection, L"VRXDSM_DRIVEINFO") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_DRIVEINFO\n");
    return false;
  }
  if (classes.answer.Initialize(&classes.list, &answer) != kWmiSuccess) {
    TracePrint("Error initializing diskInfoListEnumerator\n");
    return false;
  }
  return true;
}

constexpr FlagProperty kOwnershipFlags[] = {
    {L"CurrentOwningController", lun_flag::kCurrentOwningController},
    {L"BootOwningController", lun_flag::kBootOwningController},
    {L"PreferredController", lun_flag::kPreferredController},
    {L"VdOwnershipTransferEnabled", lun_flag::kVdOwnershipTransferEnabled},
};

constexpr FlagProperty kConditionFlags[] = {
    {L"NotConfigured", lun_flag::kNotConfigured},
    {L"Quiescent", lun_flag::kQuiescent},
    {L"NotReady", lun_flag::kNotReady},
    {L"Busy", lun_flag::kBusy},
    {L"UTMLun", lun_flag::kUTMLun},
    {L"NeedsReservationCheck", lun_flag::kNeedsReservationCheck},
};

constexpr FlagProperty kReservationFlags[] = {
    {L"TASBitSet", lun_flag::kTASBitSet},
    {L"APTPLSet", lun_flag::kAPTPLSet},
};

void ReadLun(OrbWmiEnumerator& element, RdacLun& lun) {
  element.GetProperty(L"WWN", lun.WWN.data(), static_cast<std::uint32_t>(lun.WWN.size()));
  lun.flags = lun_flag::kPresent | ReadFlags(element, kOwnershipFlags);
  if (lun.Has(lun_flag::kVdOwnershipTransferEnabled)) {
    lun.VdOwnershipTransferAttemptCount = ReadLowByte(element, L"VdOwnershipTransferAttemptCount");
  }
  lun.flags |= ReadFlags(element, kConditionFlags);
  lun.LoadBalancePolicy = ReadNumber(element, L"LoadBalancePolicy");
  lun.flags |= ReadFlags(element, kReservationFlags);
  lun.DiskState = ReadNumber(element, L"DiskState");
}

/// False when the walk ends with this element. A LUN that the record has no place for is passed over.
bool ReadElement(OrbWmiEnumerator& element, DiskClasses& classes, RdacInfoRequest& request) {
  wmiReturn status = kWmiSuccess;
  const std::uint32_t arrayModuleId = ReadNumber(element, L"ArrayModuleId", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  TracePrint("Check for valid ArrayId in DiskInfo information\n");
  if (arrayModuleId != request.moduleId) {
    TracePrint("Controller information is for a different array.  Wanted ID %d, received ID %d\n",
               static_cast<int>(request.moduleId), static_cast<int>(arrayModuleId));
    return false;
  }
  const std::uint32_t lunNumber = ReadNumber(element, L"LunNumber", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  RdacLun* lun = request.info.Lun(lunNumber);
  if (lun != nullptr) {
    ReadLun(element, *lun);
    if (ReadNumber(element, L"NumDriveInfos") != 0) {
      ReadDriveInfos(element, classes.driveList, classes.drive, request, lunNumber);
    }
  }
  return true;
}

} // namespace

void CopyDiskInfoToRdacInfo(RdacInfoRequest& request, OrbWmiVariant& answer) {
  DiskClasses classes;
  if (!Open(classes, answer)) {
    return;
  }
  ElementWalk disks(classes.answer, classes.disk, L"DiskInfoList");
  if (!disks.IsOpen()) {
    return;
  }
  for (std::uint32_t index = 0;; ++index) {
    const bool stands = disks.Next();
    TracePrint("DiskIndex 0x%x\n", static_cast<unsigned>(index));
    if (!stands || !ReadElement(disks.Element(), classes, request)) {
      return;
    }
  }
}

} // namespace korvex
