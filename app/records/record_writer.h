#pragma once

#include "app/records/file_helpers.h"
#include "app/records/status_info.h"

namespace korvex {

/// Writes a record from the file's beginning on, its content composed first; what the file holds behind it stays. A
/// record without status leaves the file as it is. False after a message.
bool utilWriteWWNFile(const RecordFile& file, const UtilStatusInfo& record);

} // namespace korvex
