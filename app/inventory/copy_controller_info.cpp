#include "app/channel/channel.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/rdac_properties.h"
#include "platform/allocation.h"

namespace korvex {

namespace {

/// What the walk over the controllers works with.
struct ControllerClasses {
  OrbWmiClass list;
  OrbWmiEnumerator answer;
  OrbWmiClass controller;
  OrbWmiClass path;
};

/// False after a trace line.
bool Open(ControllerClasses& classes, OrbWmiVariant& answer) {
  OrbWmiConnection& connection = gDsmChannel->connection;
  if (classes.list.Initialize(connection, L"VRXDSM_CONTROLLER_MODULE_LIST") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_CONTROLLER_MODULE_LIST class\n");
    return false;
  }
  if (classes.answer.Initialize(&classes.list, &answer) != kWmiSuccess) {
    TracePrint("Error initializing controllerModuleListEnumerator\n");
    return false;
  }
  if (classes.controller.Initialize(connection, L"VRXDSM_CONTROLLER_MODULE") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_CONTROLLER_MODULE class\n");
    return false;
  }
  if (classes.path.Initialize(connection, L"VRXDSM_CONTROLLER_PATH") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_CONTROLLER_PATH class\n");
    return false;
  }
  return true;
}

constexpr FlagProperty kControllerFlags[] = {
    {L"Failed", controller_flag::kFailed},
    {L"FailoverInProgress", controller_flag::kFailoverInProgress},
    {L"ServiceMode", controller_flag::kServiceMode},
    {L"UTMLunExists", controller_flag::kUTMLunExists},
};

void ReadController(OrbWmiEnumerator& element, RdacController& controller) {
  controller.ControllerHandle = ReadHandle(element, L"ControllerHandle");
  controller.UTMLun = ReadNumber(element, L"UTMLun");
  controller.ReservationPathIndex = ReadNumber(element, L"ReservationPathIndex");
  controller.NumberOfPaths = ReadLowByte(element, L"NumberOfPaths");
  controller.flags = controller_flag::kPresent | ReadFlags(element, kControllerFlags);
}

constexpr NumberProperty<RdacPath> kPathNumbers[] = {
    {L"PathState", &RdacPath::PathState},
    {L"RequestsInProgress", &RdacPath::RequestsInProgress},
    {L"PathId", &RdacPath::PathId},
    {L"CurrentCongestionStartTime", &RdacPath::CurrentCongestionStartTime},
    {L"CurrentCongestionIntervalCount", &RdacPath::CurrentCongestionIntervalCount},
    {L"CurrentCongestionIoCount", &RdacPath::CurrentCongestionIoCount},
    {L"CurrentCongestionIoResponseTotal", &RdacPath::CurrentCongestionIoResponseTotal},
    {L"CurrentCongestionPopulationSize", &RdacPath::CurrentCongestionPopulationSize},
    {L"AvgCongestionIoResponse", &RdacPath::AvgCongestionIoResponse},
};

constexpr ByteProperty<RdacPath> kPathAddress[] = {
    {L"Port", &RdacPath::Port},
    {L"Path", &RdacPath::Path},
    {L"Target", &RdacPath::Target},
};

void ReadPath(OrbWmiEnumerator& element, RdacPath& path) {
  path.flags = path_flag::kReported | path_flag::kPresent;
  path.DirectoryHandle = ReadHandle(element, L"DirectoryHandle");
  ReadNumbers<RdacPath>(element, kPathNumbers, path);
  path.InterfaceType = static_cast<std::uint8_t>(ReadHandle(element, L"InterfaceType"));
  OrbWmiEnumerator* address = nullptr;
  if (element.InitUnknownEnumerator(L"ControllerAddress", &address) == kWmiSuccess) {
    ReadLowBytes<RdacPath>(*address, kPathAddress, path);
  }
  platform::DeleteObject(address);
}

/// A path that the record has no place for is passed over.
void ReadPaths(OrbWmiEnumerator& element, OrbWmiClass& pathClass, RdacInfo& info, std::uint32_t controllerIndex) {
  ElementWalk paths(element, pathClass, L"ControllerPathList");
  while (paths.IsOpen() && paths.Next()) {
    RdacPath* path = info.Path(controllerIndex, ReadNumber(paths.Element(), L"PathIndex"));
    if (path != nullptr) {
      ReadPath(paths.Element(), *path);
    }
  }
}

/// False when the walk ends with this element. A controller that the record has no place for is passed over.
bool ReadElement(OrbWmiEnumerator& element, OrbWmiClass& pathClass, RdacInfoRequest& request) {
  wmiReturn status = kWmiSuccess;
  const std::uint32_t arrayModuleId = ReadNumber(element, L"ArrayModuleId", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  TracePrint("Check for valid ArrayId\n");
  if (arrayModuleId != request.moduleId) {
    TracePrint("Controller information is for a different array.  Wanted ID %d, received ID %d\n",
               static_cast<int>(request.moduleId), static_cast<int>(arrayModuleId));
    return false;
  }
  const std::uint32_t controllerIndex = ReadNumber(element, L"ControllerIndex", &status);
  if (status == kWmiRequestFailed) {
    return false;
  }
  RdacController* controller = request.info.Controller(controllerIndex);
  if (controller != nullptr) {
    ReadController(element, *controller);
    ReadPaths(element, pathClass, request.info, controllerIndex);
  }
  return true;
}

} // namespace

void CopyControllerInfoToRdacInfo(RdacInfoRequest& request, OrbWmiVariant& answer) {
  ControllerClasses classes;
  if (!Open(classes, answer)) {
    return;
  }
  ElementWalk controllers(classes.answer, classes.controller, L"ControllerModuleList");
  if (!controllers.IsOpen()) {
    return;
  }
  for (std::uint32_t index = 0;; ++index) {
    const bool stands = controllers.Next();
    TracePrint("ModuleIndex 0x%x\n", static_cast<unsigned>(index));
    if (!stands || !ReadElement(controllers.Element(), classes.path, request)) {
      return;
    }
  }
}

} // namespace korvex
