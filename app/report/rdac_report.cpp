#include "app/report/rdac_report.h"

#include "app/cli/console/print.h"
#include "app/inventory/wwn_text.h"
#include "app/report/rdac_controller_report.h"
#include "app/report/rdac_lun_report.h"
#include "app/report/rdac_text.h"

namespace korvex {

namespace {

void PrintIdentity(const RdacInfoRequest& request) {
  const RdacModule& module = request.info.Module();
  Print("VRX Information:\n");
  Print("----------------\n");
  Print("      ModuleName: %-32.32s         SingleController: %c\n", request.moduleName.data(),
        YesNo(module.Has(module_flag::kSingleController)));
  Print(" VirtualTargetID: 0x%03x                                       ScanTriggered: %c\n",
        static_cast<unsigned>(module.VirtualTargetID), YesNo(module.Has(module_flag::kScanTriggered)));
  Print("     ObjectCount: 0x%03x                                          AVTEnabled: %c\n",
        static_cast<unsigned>(module.ObjectCount), YesNo(module.Has(module_flag::kAVTEnabled)));
  Print("             WWN: ");
  PrintWwnBytes(module.WWN);
  Print("               RestoreCfg: %c\n", YesNo(module.Has(module_flag::kRestoreCfg)));
  Print("    ModuleHandle: %-18.18s                          Page2CSubPage: %c\n",
        HandleText(module.ModuleHandle).c_str(), YesNo(module.Has(module_flag::kPage2CSubPage)));
  Print(" FirmwareVersion: %-18.18s                         FailoverMethod: %c\n",
        FirmwareText(module.FirmwareVersion).c_str(), module.FailoverMethod == 0 ? 'C' : 'L');
  Print("   ScanTaskState: 0x%08x\n", static_cast<unsigned>(module.ScanTaskState));
}

void PrintPolicy(const RdacModule& module) {
  const char* name = RdacPolicyName(module.LoadBalancePolicy);
  if (name != nullptr) {
    Print("        LBPolicy: %s\n", name);
  } else {
    Print("        LBPolicy: UnKnown\n");
  }
  Print("\n");
}

/// Which controller a recovery affects, if it is active.
void PrintAffectedController(std::uint8_t recovery, std::uint8_t controllerId) {
  if (recovery == 0) {
    Print("  Effected Cntrl: N/A\n\n");
  } else if (controllerId == 0) {
    Print("  Effected Cntrl: A\n\n");
  } else {
    Print("  Effected Cntrl: B\n\n");
  }
}

void PrintPathLossRecovery(const RdacModule& module) {
  Print("  ControllerPathLossRecovery                                     Active Y/N: %c\n",
        YesNo(module.ControllerPathLossRecovery == 1));
  Print("  StartTimeFrame: %-8.8s", TimeText(module.ControllerPathRecoveryStart).c_str());
  Print("                                   Time Remaining: %-8.8s\n",
        TimeText(module.ControllerPathRecoveryTimeLeft).c_str());
  PrintAffectedController(module.ControllerPathLossRecovery, module.ControllerPathRecoveryCtrlId);
}

void PrintFailoverThresholdRecovery(const RdacModule& module) {
  Print("  FailoverEventThresholdRecovery                                 Active Y/N: %c\n",
        YesNo(module.FailoverEventThresholdRecovery == 1));
  Print("  StartTimeFrame: %-8.8s", TimeText(module.FailoverEventThresholdRecoveryStart).c_str());
  Print("                                   Time Remaining: %-8.8s\n",
        TimeText(module.FailoverEventThresholdTimeLeft).c_str());
  Print("  ThresholdCount: %-2.u", static_cast<unsigned>(module.FailoverEventThresholdCount));
  Print("                                       ThresholdCounter: %u\n",
        static_cast<unsigned>(module.FailoverEventThresholdCounter));
  PrintAffectedController(module.FailoverEventThresholdRecovery, module.FailoverEventThresholdCtrlId);
}

void PrintExtendedPathRecovery(const RdacModule& module) {
  Print("\nExtended Path Recovery Stats\n");
  Print("----------------------------\n");
  Print("\n");
  PrintPathLossRecovery(module);
  PrintFailoverThresholdRecovery(module);
}

} // namespace

void PrintRdacInfo(const RdacInfoRequest& request) {
  const RdacModule& module = request.info.Module();
  PrintIdentity(request);
  PrintPolicy(module);
  if (module.Has(module_flag::kExtPathRecoveryEnabled)) {
    PrintExtendedPathRecovery(module);
  }
  for (std::uint32_t index = 0; index < RdacInfo::kControllers; ++index) {
    PrintRdacController(request.info, index);
  }
  PrintRdacLuns(request.info);
}

} // namespace korvex
