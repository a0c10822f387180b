#pragma once

#include <functional>
#include <string>

namespace korvex {

/// What was printed, byte for byte as the program wrote it: line ends are "\n" on every system.
struct CapturedOutput {
  std::string out;
  std::string err;
};

/// Calls `action` and gives what reaches standard output and standard error meanwhile, by whatever way. Does not nest.
/// What is captured also counts as printed for the message coverage.
CapturedOutput Capture(const std::function<void()>& action);

} // namespace korvex
