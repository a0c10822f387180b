#pragma once

#include "wmi/orb_wmi_variant.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// A function of the program behind a request code: 0 success, kNothingToDo (success too), anything else failure. The
/// argument is the caller's, unchanged; the output holder is empty.
using RequestCallback = std::uint32_t(std::uint32_t requestCode, void* argument, OrbWmiVariant& output);

/// What a callback, or a step of a request that has nothing to do for the code at hand, gives.
inline constexpr std::uint32_t kNothingToDo = 3;

/// One row of the request table: a method of the DSM's methods class, a callback, or both.
struct RequestTableEntry {
  std::uint32_t code; ///< 0 ends the table
  const wchar_t* method;
  const wchar_t* input;  ///< name of the method's input parameter, or none
  const wchar_t* output; ///< name of the method's output parameter, or none
  RequestCallback* callback;
};

/// The first row with this code, or none.
const RequestTableEntry* FindRequest(std::uint32_t code);

/// What of the higher rooms the request table calls. A reference each, so that a missing one does not compile.
struct RequestCallbacks {
  RequestCallback& collectDsmArrayInfo;
  RequestCallback& getRdacInfo;
  RequestCallback& sendOptionControlRequest;
  /// Builds the input of request 0x4F03 from the caller's holder.
  wmiReturn (&buildOptionRequest)(void* argument, OrbWmiVariant& input);
};
/// Connects the table with the higher rooms; once, before the first request. `callbacks` must live for the whole run.
void ConnectRequestTable(const RequestCallbacks& callbacks);
/// What was connected, or none.
const RequestCallbacks* ConnectedCallbacks();

} // namespace korvex
