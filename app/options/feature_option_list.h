#pragma once

#include "app/options/option_detail_list.h"

namespace korvex {

/// The option details that an argument of -o asks for, with what is to be done once the DSM has accepted each. The
/// argument is changed and must live until it is read. False, after a message where something is wrong with a value,
/// when nothing is to be sent.
bool ParseFeatureOptions(char* argument, OptionDetailList& details);

/// What of the higher rooms is attached to options. A reference each, so that a missing one does not compile.
struct OptionHandlers {
  CompletionHandler& saveLoadBalancePolicy; ///< regSaveLBPSettings
};
/// Connects the options with the higher rooms; once, before the first option. `handlers` must live for the whole run.
void ConnectOptionHandlers(const OptionHandlers& handlers);

} // namespace korvex
