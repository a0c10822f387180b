#pragma once

#include "wmi/orb_wmi_variant.h"

#include <cstddef>
#include <cstdint>

// The readers of the four information requests' answers. Each takes the holder in which the answer object came back and
// a receive buffer of its capacity below, and stores the records on the channel's open connection until the list ends,
// a record does not fit, or the announced count is reached.

namespace korvex {

inline constexpr std::size_t kDsmArrayInfoCapacity = 186;
inline constexpr std::size_t kDsmTpgInfoCapacity = 7338;
inline constexpr std::size_t kDsmMpgInfoCapacity = 542140;
inline constexpr std::size_t kDsmDevInfoCapacity = 70;

/// The array list, at most gNumberOfArrays records, into the current-array state, with the summary listing as it goes
/// when that was asked for; 0 only when its name buffer cannot be allocated, else 1.
int ReadArrayInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer);

/// The controller, LUN and device-info lists, into their stores, which must exist; 1, or 0 when a class or enumerator
/// could not be set up. Their counts become the number of records stored.
int ReadTpgInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer);
int ReadMpgInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer);
int ReadDevInfoList(OrbWmiVariant& answer, unsigned char* receiveBuffer);

/// What of the higher rooms the array list's reader calls; see gen2_inventory.h.
struct CollectionOutputs;
extern const CollectionOutputs* gCollectionOutputs;

} // namespace korvex
