#include "app/report/array_report_controllers.h"

#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/path_information.h"
#include "app/report/array_report_text.h"
#include "app/report/interface_type_name.h"
#include "app/report/time_text.h"
#include "wmi/trace_text.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <span>

namespace korvex {

namespace {

void PrintHeading(const TpgControllerRecord& controller) {
  Print("    SerialNumber: %s \n", SerialNumberInScratch(controller.serialNumber));
  Print("    ------------------------\n");
  Print("    Designation:   %c\n", DesignationLetter(controller.designation));
  Print("    NumberOfPaths: %u\n", static_cast<unsigned>(controller.numberOfPaths));
  if (gExtendedReport) {
    Print("        ServiceMode:  %c\n", controller.serviceMode == 1 ? 'Y' : 'N');
  }
  Print("\n\n");
}

void PrintCongestion(const TpgPathEntry& path) {
  char startTime[19];
  FormatTimeOfDay(path.congestionStartTime, startTime, sizeof startTime);
  Print("\n\n");
  Print("            Path Congestion Stat: \n");
  Print("            -------------------------------------------------------------\n");
  Print("            StartTimeFrame: %-8.8s                  IntervalCount: %-4u\n", startTime,
        static_cast<unsigned>(path.congestionIntervalCount));
  Print("            IoExceededCount: %-4u                    PopulationSize: %-4u\n",
        static_cast<unsigned>(path.ioExceededCount), static_cast<unsigned>(path.populationSize));
  Print("            AvgIoResponse: %-4u                     IoResponseTotal: %-4u\n\n\n",
        static_cast<unsigned>(path.avgIoResponse), static_cast<unsigned>(path.ioResponseTotal));
}

/// Leaves the identifier of the path printed last in gCntrlPathId.
void PrintPaths(const TpgControllerRecord& controller) {
  Print("        PathID        State            Interface\n");
  Print("        -----------------------------------------------------------------\n");
  for (const TpgPathEntry& path : controller.PathsInUse()) {
    std::memcpy(gCntrlPathId, &path.pathId, sizeof path.pathId);
    std::memcpy(gCntrlPathId + sizeof path.pathId, &path.pathIdExtension, sizeof path.pathIdExtension);
    Print("        0x%8x    %-16.16s %s\n", static_cast<unsigned>(path.pathId & 0xFFFFFFFF),
          ControllerPathStateText(path.pathState), InterfaceTypeName(path.interfaceType));
    if (path.congestionPresent != 0) {
      PrintCongestion(path);
    }
  }
}

/// The adapter of the path in gCntrlPathId; nothing when the framework does not know it.
void PrintAdapter() {
  constexpr std::size_t kLongestName = 29;
  constexpr std::size_t kKeptOfLonger = 26;

  std::uint64_t pathId = 0;
  std::memcpy(&pathId, gCntrlPathId, sizeof pathId);
  const std::span adapters(gPathInformation->Entries(), gPathInformation->count);
  const auto adapter =
      std::ranges::find_if(adapters, [pathId](const PathInformationEntry& entry) { return entry.PathId == pathId; });
  if (adapter == adapters.end()) {
    return;
  }
  wchar_t name[std::size(PathInformationEntry{}.AdapterName)];
  std::wcscpy(name, adapter->AdapterName);
  if (std::wcslen(name) > kLongestName) {
    std::wcscpy(name + kKeptOfLonger, L"...");
  }
  Print("            Adapter: %s   (B|D|F: %03d|%03d|%03d)\n", NarrowText(name).c_str(),
        static_cast<int>(adapter->BusNumber), static_cast<int>(adapter->DeviceNumber),
        static_cast<int>(adapter->FunctionNumber));
}

} // namespace

void PrintControllerInformation() {
  for (std::uint32_t k = 0; k < gArrayControllerCount; ++k) {
    if (k == 0) {
      Print("Controller Information: \n");
      Print("=======================\n");
    }
    const TpgControllerRecord controller = StoredController(k);
    PrintHeading(controller);
    PrintPaths(controller);
    if (gExtendedReport && gPathInformation != nullptr && !controller.PathsInUse().empty()) {
      PrintAdapter();
    }
    Print("\n");
  }
}

} // namespace korvex
