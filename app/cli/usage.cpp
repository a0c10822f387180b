#include "app/cli/usage.h"

#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"

namespace korvex {

void PrintUsage() {
  Print("Usage: %s %s %s\n", gProgramName != nullptr ? gProgramName : "korvex",
        "[-a {target_name}] [-g target_id] [-o [feature_action_name | feature_variable_name=value] [,SaveSettings]] "
        "[-s \"busscan\" | \"forcerebalance\"] [-S]",
        "[-D [dsm]] [-R] [-M] [-P [GetMpioParameters] | [[MpioParameter=value] | ...]]");
}

} // namespace korvex
