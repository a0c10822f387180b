#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The arrays behind a DSM of interface generation 2 as the description tells them. Codes are the driver's own numbers.

namespace simhost {

/// What every record can be told beside its fields: its whole content, and the size that its element announces.
struct RecordModel {
  std::optional<std::vector<std::uint8_t>> raw;
  std::optional<std::uint32_t> size;
};

struct CongestionModel {
  std::uint8_t present = 1; ///< what says that the rest counts
  std::uint32_t start = 0;  ///< seconds since 1970-01-01 00:00:00 UTC
  std::uint32_t intervals = 0;
  std::uint32_t ioExceeded = 0;
  std::uint32_t population = 0;
  std::uint32_t averageResponse = 0;
  std::uint32_t totalResponse = 0;
};

struct ControllerPathModel {
  std::uint64_t id = 0;
  std::uint32_t extension = 0;
  std::uint8_t state = 1;         ///< 1 working
  std::uint8_t interfaceType = 0; ///< 0 FC
  std::optional<CongestionModel> congestion;
};

struct ControllerModel : RecordModel {
  std::string serial; ///< 10 bytes
  std::uint8_t designation = 0;
  std::uint8_t serviceMode = 0;
  std::uint8_t state = 1;
  std::uint8_t pathsInUse = 0;
  std::vector<ControllerPathModel> paths;
};

struct LunPathModel {
  std::uint64_t id = 0;
  std::uint32_t extension = 0;
  std::uint8_t controller = 0;           ///< designation of the controller that it runs through
  std::optional<std::uint8_t> state;     ///< asymmetric access state; follows the owner unless given
  std::optional<std::uint8_t> lastState; ///< follows the state unless given
  std::optional<std::uint8_t> previous;  ///< follows the state unless given
  std::uint64_t deviceInfo[2] = {0, 0};
  std::uint8_t weight = 0;
  std::uint32_t addressLength = 8;
  std::uint8_t port = 0;
  std::uint8_t path = 0;
  std::uint8_t target = 0;
  std::optional<std::uint8_t> lun; ///< the LUN's number unless given
  std::uint16_t requests = 0;
  std::array<std::uint8_t, 6> flags = {}; ///< IN, BR, US, IR, PR, SN
  std::uint32_t internalState = 1;        ///< bit 0 online
};

struct LunModel : RecordModel {
  std::string wwn; ///< 32 bytes
  std::uint8_t number = 0;
  std::wstring vendorProduct;
  std::uint8_t state = 1;    ///< 1 normal
  std::uint8_t failover = 2; ///< 2 TPGS explicit
  std::uint8_t policy = 3;   ///< 3 round robin with subset
  std::uint8_t persistThroughPowerLoss = 0;
  std::uint8_t persistSent = 0;
  std::uint8_t owner = 0; ///< designation
  std::string ownerSerial;
  std::uint8_t preferred = 0;
  std::string preferredSerial;
  std::string disk; ///< MPIO disk name, 10 bytes
  std::uint8_t throttled = 0;
  std::uint8_t groupThrottled = 0;
  std::uint32_t internalState = 0;
  std::uint32_t tas = 0;
  std::uint8_t alb = 0;
  std::uint8_t pathsInUse = 0;
  std::vector<LunPathModel> paths;
};

struct DeviceModel : RecordModel {
  std::uint8_t state = 1;
  std::uint8_t controller = 0;
  std::uint8_t port = 0;
  std::uint8_t path = 0;
  std::uint8_t target = 0;
  std::uint8_t lun = 0;
};

/// Slots of a controller's paths among the interface codes.
inline constexpr std::size_t kPathSlots = 32;
inline constexpr std::uint8_t kUnusedSlot = 255;

struct ArrayModel : RecordModel {
  std::uint8_t id = 0;
  std::string wwn;   ///< 32 bytes
  std::wstring name; ///< 29 units; what is longer is cut, without terminator
  std::array<std::uint8_t, 2 * kPathSlots> interfaceTypes = {};
  std::uint8_t extendedPathRecovery = 0;
  std::uint8_t utmLunEnabled = 0;
  std::uint8_t utmLunNumber = 0;
  bool inTransition = false; ///< its paths cannot be set offline or online now
  std::uint32_t announcedLuns = 0;
  std::uint32_t announcedControllers = 0;
  std::vector<ControllerModel> controllers;
  std::vector<LunModel> luns;
  std::vector<DeviceModel> devices;
};

} // namespace simhost
