#include "app/report/rdac_controller_report.h"

#include "app/cli/console/print.h"
#include "app/report/interface_type_name.h"
#include "app/report/rdac_text.h"

namespace korvex {

namespace {

void PrintUtmLun(const RdacController& controller) {
  const char failed = YesNo(controller.Has(controller_flag::kFailed));
  if (controller.Has(controller_flag::kUTMLunExists)) {
    Print("    UTMLunExists: %c (%-3.3u)                                            Failed: %c\n", 'Y',
          static_cast<unsigned>(controller.UTMLun), failed);
  } else {
    Print("    UTMLunExists: %c                                                  Failed: %c\n", 'N', failed);
  }
}

void PrintStatus(const RdacController& controller, std::uint32_t index) {
  Print("\nController '%c' Status:\n", ControllerLetter(index));
  Print("-----------------------\n");
  Print("ControllerHandle: %-18.18s                      ControllerPresent: %c\n",
        HandleText(controller.ControllerHandle).c_str(), YesNo(controller.Has(controller_flag::kPresent)));
  PrintUtmLun(controller);
  Print("   NumberOfPaths: %1u                                          FailoverInProg: %c\n",
        static_cast<unsigned>(controller.NumberOfPaths), YesNo(controller.Has(controller_flag::kFailoverInProgress)));
  Print("                                                                ServiceMode: %c\n",
        YesNo(controller.Has(controller_flag::kServiceMode)));
}

void PrintPath(const RdacPath& path, std::uint32_t index) {
  Print("\n    Path #%1u\n", static_cast<unsigned>(index + 1));
  Print("    ---------\n");
  Print(" DirectoryVertex: %-18.18s                                Present: %c\n",
        HandleText(path.DirectoryHandle).c_str(), YesNo(path.Has(path_flag::kPresent)));
  Print("       PathState: %-21.21s\n", RdacStateName(path.PathState));
  Print("          %s: 0x%x (%s)\n", "PathId", static_cast<unsigned>(path.PathId),
        PathAddressText(path.Port, path.Path, path.Target).c_str());
  Print("   InterfaceType: %-21.21s\n", InterfaceTypeName(path.InterfaceType));
  Print("   %s: %d\n", "ReqInProgress", static_cast<int>(path.RequestsInProgress));
}

void PrintCongestion(const RdacPath& path) {
  Print("\n    Path Congestion Stats\n");
  Print("    ---------------------\n");
  Print("  StartTimeFrame: %-8.8s                                    IntervalCount: %-8u\n",
        TimeText(path.CurrentCongestionStartTime).c_str(), static_cast<unsigned>(path.CurrentCongestionIntervalCount));
  Print(" IoExceededCount: %-8u                                   PopulationSize: %-8u\n",
        static_cast<unsigned>(path.CurrentCongestionIoCount),
        static_cast<unsigned>(path.CurrentCongestionPopulationSize));
  Print("   AvgIoResponse: %-8u                                  IoResponseTotal: %-8u\n",
        static_cast<unsigned>(path.AvgCongestionIoResponse),
        static_cast<unsigned>(path.CurrentCongestionIoResponseTotal));
}

} // namespace

void PrintRdacController(const RdacInfo& info, std::uint32_t index) {
  const RdacController& controller = *info.Controller(index);
  if (!controller.Has(controller_flag::kPresent)) {
    return;
  }
  PrintStatus(controller, index);
  const bool isCongestionShown = info.Module().Has(module_flag::kPathCongestionEnabled);
  for (std::uint32_t i = 0; i < info.MaxPaths(); ++i) {
    const RdacPath& path = *info.Path(index, i);
    if (!path.Has(path_flag::kPresent)) {
      continue;
    }
    PrintPath(path, i);
    if (isCongestionShown) {
      PrintCongestion(path);
    }
  }
  Print("\n");
}

} // namespace korvex
