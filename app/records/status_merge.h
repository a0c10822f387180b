#pragma once

#include "app/records/status_info.h"

namespace korvex {

/// Merges what the DSM reports now into what has been recorded; both records have the same limits. The stored record
/// then has every path ever recorded: reported ones with their state, others as not reported. The current record's
/// paths are used up.
void utilMergeStatusInfo(UtilStatusInfo& current, UtilStatusInfo& stored);

} // namespace korvex
