#pragma once

#include "simhost/json.h"

#include <cstdint>

namespace simhost {

/// How large a made host is.
struct MadeMachine {
  std::uint64_t arrays = 2;     ///< at most kMostArrays
  std::uint64_t luns = 16;      ///< an array; at most kMostLuns
  std::uint64_t paths = 2;      ///< a controller; at most kMostPaths
  std::uint64_t generation = 2; ///< of the driver interface, 1 or 2
  std::uint64_t seed = 1;       ///< equal seeds give equal hosts
};

/// Array ids and LUN numbers are bytes, and a controller has so many path slots.
inline constexpr std::uint64_t kMostArrays = 256;
inline constexpr std::uint64_t kMostLuns = 256;
inline constexpr std::uint64_t kMostPaths = 32;

/// The description of a healthy host with one DSM: arrays of two controllers, LUNs that are reached through all paths
/// of both (up to 32 in interface generation 2), some of them away from the controller that they prefer, and the
/// adapters of the paths. The limits of interface generation 1 are what the host needs.
Json MadeDescription(const MadeMachine& machine);

} // namespace simhost
