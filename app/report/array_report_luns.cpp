#include "app/report/array_report_luns.h"

#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/record_bytes.h"
#include "app/inventory/wwn_text.h"
#include "app/report/array_report_text.h"
#include "wmi/trace_text.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace korvex {

namespace {

/// The WWN that was put into gLunWWN.
void PrintWwnInScratch() {
  WwnCharacters wwn;
  std::copy_n(gLunWWN, wwn.size(), wwn.begin());
  PrintWwnCharacters(wwn);
}

void PrintHeading(const MpgDeviceRecord& lun) {
  Print("    Lun # 0x%02x : ", static_cast<unsigned>(lun.LunNumber()));
  std::ranges::copy(lun.wwn, gLunWWN);
  PrintWwnInScratch();
  Print("\n    --------------------------------------\n");
}

void PrintProperties(const MpgDeviceRecord& lun) {
  Print("    State: %s\n", LunStateText(lun.state));
  Print("    MPIO Disk: %s\n", lun.diskName.data());
  Print("    NumberDevices: %u\n", static_cast<unsigned>(lun.numberOfPaths));
  Print("    LBPolicy: %s\n", LoadBalancePolicyText(lun.loadBalancePolicy));
  Print("    FailoverMethod: %s", FailoverMethodLine(lun.failoverMethod));
  Print("    CurrentOwningController: %s (%c)\n", SerialNumberInScratch(lun.owningSerialNumber),
        DesignationLetter(lun.owningDesignation));
  Print("    PreferredController:     %s (%c)\n", SerialNumberInScratch(lun.preferredSerialNumber),
        DesignationLetter(lun.preferredDesignation));
  if (lun.persistThroughPowerLoss != 0) {
    Print("    Persist Through Power Loss: Sent(%u)\n", static_cast<unsigned>(lun.persistThroughPowerLossSent));
  }
}

void PrintDiagnostics(const MpgDeviceRecord& lun) {
  Print("        ComponentIdentifier: ");
  PrintWwnInScratch();
  Print("\n");
  Print("        Throttled: %c\n", YesNoLetter(lun.throttled));
  Print("        GroupIOThrottled: %c\n", YesNoLetter(lun.groupIoThrottled));
  Print("        InternalState: 0x%x\n", static_cast<unsigned>(lun.internalState));
  Print("        TASBitStatus: %s", TasBitStatusLine(lun.tasBitStatus));
  Print("        ALBStatus: %s", AlbStatusLine(lun.albStatus));
}

/// Puts the path's identifier and DeviceInfo bytes into their scratch buffers and prints from there.
void PrintPath(const MpgPathEntry& path) {
  std::memcpy(gLunPathId, &path.pathId, sizeof path.pathId);
  std::memcpy(gLunPathId + sizeof path.pathId, &path.pathIdExtension, sizeof path.pathIdExtension);
  std::ranges::copy(path.deviceInfo, gLunPathDevInfo);
  const RecordBytes deviceInfo(std::span(gLunPathDevInfo, path.deviceInfo.size()));
  Print("        0x%8x    %-18.18s 0x%16s    %s %2u\n", static_cast<unsigned>(path.pathId & 0xFFFFFFFF),
        AccessStateText(path.accessState), PointerText(deviceInfo.U64(0)).c_str(), OnlineStateText(path.internalState),
        static_cast<unsigned>(path.pathWeight));
}

/// All lines at once: large arrays have thousands of these blocks.
void PrintPathDiagnostics(const MpgPathEntry& path) {
  const RecordScsiAddress& address = path.scsiAddress;
  Print("            SCSIAddress: (%3x | %2x | %2x | %2x) \n"
        "            LastGoodState: %-21.21s \n"
        "            PreviousStatus: %-21.21s \n"
        "            RequestInProgress: %u \n"
        "            InternalState: 0x%x \n"
        "            Flags: (IN|BR|US|IR|PR|SN:  %c:%c:%c:%c:%c:%c)\n",
        static_cast<unsigned>(address.port), static_cast<unsigned>(address.path), static_cast<unsigned>(address.target),
        static_cast<unsigned>(address.lun), AccessStateText(path.lastGoodState), AccessStateText(path.previousStatus),
        static_cast<unsigned>(path.requestsInProgress), static_cast<unsigned>(path.internalState),
        YesNoLetter(path.flags[0]), YesNoLetter(path.flags[1]), YesNoLetter(path.flags[2]), YesNoLetter(path.flags[3]),
        YesNoLetter(path.flags[4]), YesNoLetter(path.flags[5]));
}

void PrintPaths(const MpgDeviceRecord& lun) {
  const std::span<const MpgPathEntry> paths = lun.PathsInUse();
  if (!paths.empty()) {
    Print("        Path_ID       State              DeviceInfo            Online State    Weight\n");
    Print("        -----------------------------------------------------------------------------\n");
  }
  for (const MpgPathEntry& path : paths) {
    PrintPath(path);
    if (gExtendedReport) {
      PrintPathDiagnostics(path);
      if (lun.numberOfPaths > 1) {
        Print("\n");
      }
    }
  }
}

} // namespace

void PrintLunInformation() {
  for (std::uint32_t n = 0; n < gArrayLunCount; ++n) {
    if (n == 0) {
      Print("Lun Information: \n");
      Print("=======================\n");
    }
    const MpgDeviceRecord lun = StoredLun(n);
    PrintHeading(lun);
    PrintProperties(lun);
    if (gExtendedReport) {
      PrintDiagnostics(lun);
    }
    Print("\n");
    PrintPaths(lun);
    Print("\n");
  }
}

} // namespace korvex
