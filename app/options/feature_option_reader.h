#pragma once

#include "app/options/option_records.h"

#include <cstdint>

namespace korvex {

/// Reads the next item, "keyword" or "keyword=value", of a list of items separated by commas. `text` (none continues
/// the list begun before) is changed: its separators become terminators, and it must live until the list is read.
/// `keyword` has room for kOptionKeywordLength characters and a terminator; a longer keyword is cut. `value` is 0 and
/// `isValueProvided` is 0 for an item without value. 1, 0 when no items are left, -1 on failure (after a message when a
/// value is no number of 32 bits).
int GetNextFeatureOption(char* text, char* keyword, std::uint32_t* value, std::uint8_t* isValueProvided);

} // namespace korvex
