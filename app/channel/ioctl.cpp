#include "app/channel/ioctl.h"

#include "app/channel/channel.h"
#include "app/channel/request_input.h"
#include "app/channel/request_output.h"
#include "app/channel/request_table.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "wmi/orb_wmi_request.h"
#include "wmi/trace_text.h"
#include "wmi/wmi_return.h"

#include <optional>

namespace korvex {
namespace {

/// What one request works with, each made when it is needed; the request is released before the holders that it
/// borrows.
struct WorkingObjects {
  std::optional<OrbWmiVariant> callbackOutput;
  std::optional<OrbWmiVariant> output;
  std::optional<OrbWmiVariant> input;
  std::optional<OrbWmiRequest> request;
};

/// Builds the method's input. What cannot be built is left out, and the method's outcome decides; false then.
bool AddInput(const RequestTableEntry& row, void* argument, WorkingObjects& work) {
  TracePrint("InputEnumerator init - '%s'\n", NarrowText(row.input).c_str());
  OrbWmiVariant& input = work.input.emplace();
  input.Initialize();
  return UtilInputParameter(row.code, argument, input) == kWmiSuccess &&
         work.request->AddInputParameter(row.input, &input) == kWmiSuccess;
}

void AddOutput(const RequestTableEntry& row, WorkingObjects& work) {
  TracePrint("OutputEnumerator init - '%s'\n", NarrowText(row.output).c_str());
  OrbWmiVariant& output = work.output.emplace();
  output.Initialize();
  if (UtilOutputParameter(row.code, output) == kWmiSuccess) {
    work.request->AddOutputParameter(row.output, &output);
  }
}

/// Leaves nothing in the holders of a method that failed, the caller's included.
void EmptyHolders(std::uint32_t requestCode, void* argument, WorkingObjects& work) {
  if (RequestOutputKind(requestCode) == OutputKind::kObject && argument != nullptr) {
    static_cast<OrbWmiVariant*>(argument)->Clear();
  }
  if (work.input) {
    work.input->Clear();
  }
  if (work.output) {
    work.output->Clear();
  }
}

/// Runs the row's method on the instance of the methods class and hands its output to the caller.
int CallMethod(const RequestTableEntry& row, void* argument, WorkingObjects& work, MethodOutcome& outcome) {
  work.request.emplace().MethodRequest(row.method, &gDsmChannel->methodsClass);
  const bool isInputWhole = row.input == nullptr || AddInput(row, argument, work);
  if (row.output != nullptr) {
    AddOutput(row, work);
  }

  TracePrint("Execute method - '%s'\n", NarrowText(row.method).c_str());
  const wmiReturn status = work.request->ExecMethod(&gDsmChannel->instances);
  outcome = isInputWhole ? work.request->Outcome() : MethodOutcome::kUnknown;
  if (status != kWmiSuccess) {
    if (status == kWmiAccessDenied) {
      PrintError("Permission Denied.\n");
    }
    EmptyHolders(row.code, argument, work);
    return kIoctlFailed;
  }
  const wmiReturn handedOver = UtilReturnParameter(row.code, work.output ? &*work.output : nullptr, argument);
  return handedOver == kWmiSuccess || handedOver == kNothingToDo ? kIoctlSucceeded : kIoctlFailed;
}

int CallCallback(const RequestTableEntry& row, void* argument, WorkingObjects& work) {
  TracePrint("Calling callback function\n");
  const std::uint32_t status = row.callback(row.code, argument, work.callbackOutput.emplace());
  return status == kWmiSuccess || status == kNothingToDo ? kIoctlSucceeded : kIoctlFailed;
}

} // namespace

int Ioctl(std::uint32_t requestCode, void* argument, MethodOutcome* outcome) {
  MethodOutcome ignored;
  MethodOutcome& reached = outcome != nullptr ? *outcome : ignored;
  reached = MethodOutcome::kUnknown;
  TracePrint("Ioctl(0x%x)\n", static_cast<unsigned>(requestCode));
  const RequestTableEntry* row = FindRequest(requestCode);
  if (row == nullptr || gDsmChannel == nullptr) {
    return kIoctlFailed;
  }

  WorkingObjects work;
  int result = kIoctlFailed;
  if (row->method != nullptr) {
    result = CallMethod(*row, argument, work, reached);
  }
  if (row->callback != nullptr) {
    result = CallCallback(*row, argument, work);
  }
  TracePrint("ioctl return (0x%x)\n", static_cast<unsigned>(result));
  return result;
}

} // namespace korvex
