#pragma once

#include "tests/unit/support/capture.h"
#include "wmi/wmi_layer_trace.h"
#include "wmi/wmi_return.h"

#include <ostream>
#include <string>
#include <utility>

namespace korvex {

/// What an operation of the WMI layer gave, and its trace.
struct Outcome {
  wmiReturn status;
  std::string trace;

  bool operator==(const Outcome&) const = default;
};

inline void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << outcome.status << " with\n" << outcome.trace;
}

/// What `action` prints on both streams while the layer trace is open.
template <class Action>
CapturedOutput CaptureTraced(Action&& action) {
  WmiLayerTrace& trace = WmiLayerTrace::Instance();
  trace.Enable();
  trace.SetCategoryThreshold(0xFFFFFFFF);
  trace.SetLevelThreshold(0xFFFFFFFF);
  CapturedOutput output = Capture(std::forward<Action>(action));
  trace.SetCategoryThreshold(0);
  trace.SetLevelThreshold(0);
  return output;
}

/// Carries an operation out with the layer trace open.
template <class Operation>
Outcome Traced(Operation&& operation) {
  Outcome outcome{};
  outcome.trace = CaptureTraced([&] { outcome.status = operation(); }).out;
  return outcome;
}

} // namespace korvex
