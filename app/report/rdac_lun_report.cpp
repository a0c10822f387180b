#include "app/report/rdac_lun_report.h"

#include "app/cli/console/print.h"
#include "app/inventory/wwn_text.h"
#include "app/report/rdac_text.h"

namespace korvex {

namespace {

constexpr std::uint8_t kNoPreferredPath = 255;

char OwnerLetter(const RdacLun& lun, lun_flag::Bit bit) {
  return ControllerLetter(lun.Has(bit) ? 1 : 0);
}

void PrintHeading(const RdacLun& lun, std::uint32_t n) {
  if (n != 0) {
    Print("\n");
  }
  if (lun.WWN[0] != 0) {
    Print("    Lun #%u - WWN: %s\n", static_cast<unsigned>(n), WwnText(lun.WWN).c_str());
  } else {
    Print("    Lun #%u - WWN:\n", static_cast<unsigned>(n));
  }
  Print("    ----------------\n");
}

void PrintOwnership(const RdacLun& lun) {
  Print("       LunObject: %-18.18s                      CurrentOwningPath: %c\n"
        "  RemoveEligible: %c                                          BootOwningPath: %c\n"
        "   NotConfigured: %c                                           PreferredPath: %c\n"
        "        DevState: N/A                                 NeedsReservationCheck: %c\n",
        HandleText(lun.LunObject).c_str(), OwnerLetter(lun, lun_flag::kCurrentOwningController),
        YesNo(lun.Has(lun_flag::kRemoveEligible)), OwnerLetter(lun, lun_flag::kBootOwningController),
        YesNo(lun.Has(lun_flag::kNotConfigured)), OwnerLetter(lun, lun_flag::kPreferredController),
        YesNo(lun.Has(lun_flag::kNeedsReservationCheck)));
}

/// The gap between the policy and the TAS letter depends on the policy.
void PrintPolicyAndTas(const RdacLun& lun) {
  const char tas = YesNo(lun.Has(lun_flag::kTASBitSet));
  const char* name = RdacPolicyName(lun.LoadBalancePolicy);
  if (name == nullptr) {
    Print("        LBPolicy: UnKnown\n");
    Print("                        TASBitSet: %c\n", tas);
    return;
  }
  if (lun.LoadBalancePolicy == 0) {
    Print("        LBPolicy: %s"
          "                                TASBitSet: %c\n",
          name, tas);
  } else if (lun.LoadBalancePolicy == 1) {
    Print("        LBPolicy: %s"
          "                                 TASBitSet: %c\n",
          name, tas);
  } else {
    Print("        LBPolicy: %s"
          "                                                                  TASBitSet: %c\n",
          name, tas);
  }
}

void PrintCondition(const RdacLun& lun) {
  Print("                                                                   NotReady: %c\n"
        "                                                                       Busy: %c\n"
        "                                                                  Quiescent: %c\n",
        YesNo(lun.Has(lun_flag::kNotReady)), YesNo(lun.Has(lun_flag::kBusy)), YesNo(lun.Has(lun_flag::kQuiescent)));
  if (lun.Has(lun_flag::kVdOwnershipTransferEnabled)) {
    Print("                                        VD_Ownership_Transfer_Attempt_Count: %u\n",
          static_cast<unsigned>(lun.VdOwnershipTransferAttemptCount));
  }
  if (lun.Has(lun_flag::kAPTPLSet)) {
    Print("                                                                   APTPLSet: %c\n\n", 'Y');
  } else {
    Print("\n");
  }
}

// All lines of a drive at once: large modules have thousands of these blocks.

void PrintUtmDrive(const RdacDrive& drive, unsigned pathNumber) {
  Print("         Path #%1u: LunPathDevice: %-18.18s            UTMLunDevice: %-18.18s\n"
        "                       DevState: %-21.21s\n"
        "                     %s: %u\n"
        "                    RemoveState: 0x%x  StartState: 0x%x  PowerState: 0x%x\n",
        pathNumber, HandleText(drive.LunPathDevice).c_str(), HandleText(drive.UtmLunDevice).c_str(),
        RdacStateName(drive.DriveState), "PathWeight", static_cast<unsigned>(drive.PathWeight),
        static_cast<unsigned>(drive.RemoveState), static_cast<unsigned>(drive.StartState),
        static_cast<unsigned>(drive.PowerState));
}

void PrintDrive(const RdacDrive& drive, unsigned pathNumber) {
  Print("         Path #%1u: LunPathDevice: %-18.18s\n"
        "                       DevState: %-21.21s\n"
        "                     %s: %u\n"
        "                    RemoveState: 0x%x  StartState: 0x%x  PowerState: 0x%x\n",
        pathNumber, HandleText(drive.LunPathDevice).c_str(), RdacStateName(drive.DriveState), "PathWeight",
        static_cast<unsigned>(drive.PathWeight), static_cast<unsigned>(drive.RemoveState),
        static_cast<unsigned>(drive.StartState), static_cast<unsigned>(drive.PowerState));
}

void PrintControllerPath(const RdacInfo& info, std::uint32_t n, std::uint32_t controller) {
  const RdacDriveInfo& block = *info.DriveInfo(n, controller);
  Print("    Controller '%c' Path\n"
        "    --------------------\n"
        "   NumLunObjects: %1u                                         RoundRobinIndex: %1u\n",
        ControllerLetter(controller), static_cast<unsigned>(block.NumDrives),
        static_cast<unsigned>(block.RoundRobinIndex));
  if (block.PreferredControllerPath != kNoPreferredPath) {
    Print("                                                       ReservationPathIndex: %1d\n",
          block.PreferredControllerPath + 1);
  }
  for (std::uint32_t i = 0; i < info.MaxPaths(); ++i) {
    const RdacDrive& drive = *info.Drive(n, controller, i);
    if (drive.UtmLunDevice != 0) {
      PrintUtmDrive(drive, i + 1);
    } else if (drive.LunPathDevice != 0) {
      PrintDrive(drive, i + 1);
    }
  }
  Print("\n");
}

} // namespace

void PrintRdacLuns(const RdacInfo& info) {
  Print("\n\nLun Information\n");
  Print("---------------\n");
  for (std::uint32_t n = 0; n < info.MaxLuns(); ++n) {
    const RdacLun& lun = *info.Lun(n);
    if (!lun.HasWwn()) {
      continue;
    }
    PrintHeading(lun, n);
    PrintOwnership(lun);
    PrintPolicyAndTas(lun);
    PrintCondition(lun);
    for (std::uint32_t controller = 0; controller < RdacInfo::kControllers; ++controller) {
      PrintControllerPath(info, n, controller);
    }
  }
}

} // namespace korvex
