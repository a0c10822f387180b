#pragma once

#include "app/records/file_helpers.h"
#include "app/records/status_info.h"

namespace korvex {

/// Reads a record file from its beginning on into a fresh record. What does not fit the record is passed over; a path
/// that the file does not hold whole is none. False when the file is empty, and after a message.
bool utilReadWWNFile(const RecordFile& file, UtilStatusInfo& record);

} // namespace korvex
