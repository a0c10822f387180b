#include "app/report/array_report.h"

#include "app/cli/console/print.h"
#include "app/inventory/current_array.h"
#include "app/inventory/limits.h"
#include "app/inventory/wwn_text.h"
#include "app/report/array_report_controllers.h"
#include "app/report/array_report_luns.h"

#include <algorithm>

namespace korvex {

namespace {

void PrintIdentity() {
  WwnCharacters wwn;
  std::copy_n(gModuleWWN, wwn.size(), wwn.begin());
  Print("\n");
  Print("Array Information: \n");
  Print("=================\n");
  Print("    ModuleName: %s\n", gModuleName);
  Print("    WWN:  ");
  PrintWwnCharacters(wwn);
  Print("\n");
}

void PrintUtmLun() {
  if (gUtmLunEnabled != 0) {
    Print("    UTM LUN enabled: Y        UTM LUN number: 0x%0X\n", static_cast<unsigned>(gUtmLunNumber));
  } else {
    Print("    UTM LUN enabled: N\n");
  }
}

/// The labels alone: the driver tells no values.
void PrintExtendedPathRecovery() {
  Print("    Extended Path Recovery Stat: \n");
  Print("    ------------------------------------------------------------------------\n");
  Print("    ControllerPathLossRecovery Active: \n");
  Print("    StartTimeFrame:                                 Time remaining: \n");
  Print("    Affected Cntrl: \n\n");
  Print("    FailoverEventThresholdRecovery Active: \n");
  Print("    StartTimeFrame:                                 Time remaining: \n");
  Print("    ThresholdCount:                                 ThresholdCounter: \n");
  Print("    Affected Cntrl: \n\n");
}

} // namespace

bool PrintArrayInformation() {
  PrintIdentity();
  PrintUtmLun();
  Print("\n\n");
  if (gExtPathRecoveryEnabled != 0) {
    PrintExtendedPathRecovery();
  }
  PrintControllerInformation();
  PrintLunInformation();
  return true;
}

} // namespace korvex
