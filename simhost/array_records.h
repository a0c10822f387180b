#pragma once

#include "simhost/array_model.h"

#include <cstdint>
#include <vector>

// The driver's binary records of interface generation 2, byte by byte.

namespace simhost {

inline constexpr std::size_t kArrayRecordSize = 186;
inline constexpr std::size_t kControllerRecordSize = 7328;
inline constexpr std::size_t kLunRecordSize = 2126;
inline constexpr std::size_t kDeviceRecordSize = 60;

/// The record as it is described, or as `raw` has it.
std::vector<std::uint8_t> ArrayRecord(const ArrayModel& array);
std::vector<std::uint8_t> ControllerRecord(const ControllerModel& controller);
/// `owner` is the designation of the controller that owns the LUN now.
std::vector<std::uint8_t> LunRecord(const LunModel& lun, std::uint8_t owner);
std::vector<std::uint8_t> DeviceRecord(const DeviceModel& device);

} // namespace simhost
