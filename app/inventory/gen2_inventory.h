#pragma once

#include "wmi/orb_wmi_request.h"
#include "wmi/orb_wmi_variant.h"

#include <cstdint>

// What the DSM of interface generation 2 knows about arrays, controllers, paths and LUNs.

namespace korvex {

/// Asks the DSM for gNumberOfArrays; 1 when its methods class was found, else 0. `outcome`, where it is given, is set
/// when the DSM was asked.
int GetCurrentNumberOfArrays(MethodOutcome* outcome = nullptr);

/// Collects the selected arrays and prints what was asked for; 1, -1 when the request failed, 0 or -1 when the module
/// tables could not be made.
int GetDsmArrayInfo();

/// Callback of request 0x4DF2; the argument is the address of an InputArgumentsRecord. 0 on success, else a failure
/// status.
std::uint32_t CollectDsmArrayInfo(std::uint32_t requestCode, void* argument, OrbWmiVariant& output);

/// The LUNs reachable through the controller with this index (0 = A, 1 = B), with their path counts, on standard
/// output.
void ListControllerLuns(std::uint32_t controllerIndex);

/// What of the higher rooms the collection calls. A reference each, so that a missing one does not compile.
struct CollectionOutputs {
  void (&printListingHead)();
  bool (&printArraySummaryRow)();
  void (&printListingClosingRule)();
  bool (&printArrayInformation)();
  /// Sends a request that may take long while a status scan is under way: 0, 3 or a failure.
  int (&timedIoctl)(std::uint32_t requestCode, void* argument);
};
/// Connects the collection with the higher rooms; once, before the first collection. `outputs` must live for the whole
/// run.
void ConnectCollection(const CollectionOutputs& outputs);

} // namespace korvex
