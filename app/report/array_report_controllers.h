#pragma once

namespace korvex {

/// The controllers of the collected array with their paths and, in the extended report, their adapters; nothing for an
/// array without controllers.
void PrintControllerInformation();

} // namespace korvex
