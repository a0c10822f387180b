#pragma once

#include "app/records/record_directory.h"

namespace korvex {

/// Lists on standard output the names in the record files of arrays that were not seen.
void PrintMissingArrays(const WwnFileList& records);

} // namespace korvex
