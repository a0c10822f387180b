#pragma once

#include "app/inventory/gen2_records.h"

namespace korvex {

/// The 32 characters of a world-wide name on standard output, each as it is: a zero byte among them is printed too.
void PrintWwnCharacters(const WwnCharacters& wwn);

} // namespace korvex
