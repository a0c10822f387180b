#pragma once

#include "app/records/status_info.h"

namespace korvex {

/// Brings the record file gWwnFileName up to date with what the DSM reports and shows the array's status; makes the
/// file when there is none. False, after a message, when memory ran out.
bool UpdateRecord(UtilStatusInfo& current);

} // namespace korvex
