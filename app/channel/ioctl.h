#pragma once

#include "wmi/orb_wmi_request.h"

#include <cstdint>

namespace korvex {

/// How a generation-2 request selects its arrays; the program's side of VRXDSM_INPUT_ARGUMENTS.
struct InputArgumentsRecord {
  std::uint8_t argType; ///< 0 all arrays, 1 by id, 2 by WWN
  std::uint8_t argID;
  char argWWN[33]; ///< 32 characters and a zero byte
};

/// Results of Ioctl.
inline constexpr int kIoctlSucceeded = 1;
inline constexpr int kIoctlFailed = -1;

/// Sends one request of the request table to the DSM or to its callback; the argument's form depends on the code (a
/// number to fill, a level, an OrbWmiVariant holder, a record). 1 or -1. `outcome`, where it is given, learns how far
/// the request's method came, for a caller that must not take a failure or an empty answer for something told.
int Ioctl(std::uint32_t requestCode, void* argument, MethodOutcome* outcome = nullptr);

} // namespace korvex
