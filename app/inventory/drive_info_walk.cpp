#include "app/inventory/drive_info_walk.h"

#include "app/cli/console/trace.h"
#include "app/inventory/rdac_properties.h"

namespace korvex {

namespace {

void ReadDrive(OrbWmiEnumerator& element, RdacDriveInfo& block, RdacDrive& drive) {
  drive.UtmLunDevice = ReadHandle(element, L"UtmLunDevice");
  drive.LunPathDevice = ReadHandle(element, L"LunPathDevice");
  if (!drive.HasDevice() && block.NumDrives > 0) {
    --block.NumDrives;
  }
  drive.DriveState = ReadNumber(element, L"DriveState");
  drive.StartState = ReadLowByte(element, L"StartState");
  drive.RemoveState = ReadLowByte(element, L"RemoveState");
  drive.PowerState = ReadLowByte(element, L"PowerState");
  drive.PathWeight = ReadNumber(element, L"PathWeight");
}

/// One drive into the block that it names; false when the walk over the drives ends with this element.
bool ReadDriveElement(OrbWmiEnumerator& element, RdacInfoRequest& request, std::uint32_t lunNumber,
                      RdacDriveInfo& block, std::uint32_t blockController) {
  wmiReturn status = kWmiSuccess;
  const std::uint32_t arrayModuleId = ReadNumber(element, L"ArrayModuleId", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  TracePrint("Check for valid ArrayId in DiskDriveInfo information\n");
  if (arrayModuleId != request.moduleId) {
    TracePrint("DriveInfo information is for a different array.  Wanted ID %d, received ID %d\n",
               static_cast<int>(request.moduleId), static_cast<int>(arrayModuleId));
    return false;
  }
  const std::uint32_t controllerIndex = ReadNumber(element, L"ControllerIndex", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  if (controllerIndex >= RdacInfo::kControllers) {
    TracePrint("DriveInfo information is for an invalid controller.  Received index %d\n",
               static_cast<int>(controllerIndex));
    return false;
  }
  const std::uint32_t pathIndex = ReadNumber(element, L"PathIndex", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  RdacDrive* drive = request.info.Drive(lunNumber, blockController, pathIndex);
  if (drive == nullptr) {
    TracePrint("DriveInfo information is for an invalid path.  Received index %d\n", static_cast<int>(pathIndex));
    return false;
  }
  ReadDrive(element, block, *drive);
  return true;
}

/// One controller's block with its drives; false when the walk over the blocks ends with this element.
bool ReadBlock(OrbWmiEnumerator& element, OrbWmiClass& driveClass, RdacInfoRequest& request, std::uint32_t lunNumber) {
  wmiReturn status = kWmiSuccess;
  const std::uint32_t arrayModuleId = ReadNumber(element, L"ArrayModuleId", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  TracePrint("Check for valid ArrayId in DriveInfo information\n");
  if (arrayModuleId != request.moduleId) {
    TracePrint("Controller information is for a different array.  Wanted ID %d, received ID %d\n",
               static_cast<int>(request.moduleId), static_cast<int>(arrayModuleId));
    return false;
  }
  const std::uint32_t controllerIndex = ReadNumber(element, L"ControllerIndex", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  RdacDriveInfo* block = request.info.DriveInfo(lunNumber, controllerIndex);
  if (block == nullptr) {
    TracePrint("Controller information is for an invalid controller.  Received index %d\n",
               static_cast<int>(controllerIndex));
    return false;
  }
  block->NumDrives = ReadLowByte(element, L"NumDrives");
  block->RoundRobinIndex = ReadLowByte(element, L"ControllerIndex");
  block->PreferredControllerPath = ReadLowByte(element, L"PreferredControllerPath");
  ElementWalk drives(element, driveClass, L"DriveInfoList");
  while (drives.IsOpen() && drives.Next() &&
         ReadDriveElement(drives.Element(), request, lunNumber, *block, controllerIndex)) {
  }
  return true;
}

} // namespace

void ReadDriveInfos(OrbWmiEnumerator& lunElement, OrbWmiClass& blockClass, OrbWmiClass& driveClass,
                    RdacInfoRequest& request, std::uint32_t lunNumber) {
  ElementWalk blocks(lunElement, blockClass, L"DriveInfoList");
  while (blocks.IsOpen() && blocks.Next() && ReadBlock(blocks.Element(), driveClass, request, lunNumber)) {
  }
}

} // namespace korvex
