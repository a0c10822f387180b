#pragma once

namespace korvex {

/// The five lines above the rows of the array summary listing, for the interface generation at hand.
void PrintListingHead();
/// One generation-2 row from the current-array state; false (and nothing printed) when gModuleWWN does not exist.
bool PrintArraySummaryRow();
/// The rule below the last row.
void PrintListingClosingRule();

/// The whole listing in interface generation 1; 1, 0 when its memory cannot be had, -1 when the channel cannot be
/// opened.
int ListArrayModules();

} // namespace korvex
