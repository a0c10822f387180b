#pragma once

#include "tests/unit/support/capture.h"
#include "wmi/wmi_layer_trace.h"
#include "wmi/wmi_return.h"

#include <string>
#include <utility>

namespace korvex {

/// What `action` prints on both streams while the layer trace lets through lines up to that level.
template <class Action>
CapturedOutput CaptureTraced(Action&& action, std::uint32_t level = 0xFFFFFFFF) {
  WmiLayerTrace& trace = WmiLayerTrace::Instance();
  trace.Enable();
  trace.SetCategoryThreshold(0xFFFFFFFF);
  trace.SetLevelThreshold(level);
  CapturedOutput output = Capture(std::forward<Action>(action));
  trace.SetCategoryThreshold(0);
  trace.SetLevelThreshold(0);
  return output;
}

/// Carries an operation out with the layer trace open for errors: its status, a blank and what it printed.
template <class Operation>
std::string Traced(Operation&& operation) {
  wmiReturn status = kWmiSuccess;
  const std::string trace = CaptureTraced([&] { status = operation(); }, WmiLayerTrace::kError).out;
  return std::to_string(status) + " " + trace;
}

} // namespace korvex
