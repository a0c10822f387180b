#pragma once

namespace korvex {

/// Carries out -S: shows the status of every array that the DSM offers, keeps their record files up to date and lists
/// the arrays that have gone missing. 1 when it ran to the end, else 0 or -1.
int utilArrayStatusScan();

} // namespace korvex
