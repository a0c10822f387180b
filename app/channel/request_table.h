#pragma once

#include "wmi/orb_wmi_variant.h"

#include <cstdint>

namespace korvex {

/// A function of the program behind a request code: 0 success, 3 nothing to do (success too), anything else failure. The
/// argument is the caller's, unchanged; the output holder is empty.
using RequestCallback = std::uint32_t(std::uint32_t requestCode, void* argument, OrbWmiVariant& output);

/// One row of the request table.
struct RequestTableEntry {
  std::uint32_t code; ///< 0 ends the table
  const wchar_t* method;
  const wchar_t* input;
  const wchar_t* output;
  RequestCallback* callback;
};

/// The first row with this code, or none.
const RequestTableEntry* FindRequest(std::uint32_t code);

/// What of the higher rooms the request table calls. A reference each, so that a missing one does not compile.
struct RequestCallbacks {
  RequestCallback& collectDsmArrayInfo;
};
/// Connects the table with the higher rooms; once, before the first request. `callbacks` must live for the whole run.
void ConnectRequestTable(const RequestCallbacks& callbacks);

} // namespace korvex
