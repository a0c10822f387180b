#pragma once

#include "wmi/orb_wmi_variant.h"

#include <cstdint>

namespace korvex {

enum class DriverLevel { kDebug, kError };

/// Sets the DSM's debug or error level from its text: 1 taken, 0 the request failed, -1 nothing was sent.
int SetDriverLevel(DriverLevel level, const char* text);

/// Performs the scan that the text names, "busscan" or "forcerebalance"; results as SetDriverLevel's.
int PerformScan(const char* text);

/// Callback of request 0x4D09: has the configuration manager enumerate the device tree again; 0 or 1.
std::uint32_t ReenumerateDeviceTree(std::uint32_t requestCode, void* argument, OrbWmiVariant& output);

} // namespace korvex
