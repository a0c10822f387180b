#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The records that a DSM of interface generation 2 gives, decoded. Nothing but the readers here knows the driver's
// layouts. A record may be shorter than its layout: what is missing reads as zero.

namespace korvex {

/// Path entries in a controller or LUN record, and path slots of each controller in an array record.
inline constexpr std::size_t kPathEntries = 32;

/// Characters of a world-wide name, not terminated; any byte may stand among them.
using WwnCharacters = std::array<std::uint8_t, 32>;
/// A controller's serial number, at most 10 characters, terminated.
using SerialNumberText = std::array<char, 11>;

/// One array: identity, counts and the interface types of its path slots.
struct ArrayInfoRecord {
  static constexpr std::size_t kSize = 186;

  WwnCharacters wwn;
  std::array<wchar_t, 30> name;                              ///< one UTF-16 unit per character, terminated
  std::array<std::uint8_t, 2 * kPathEntries> interfaceTypes; ///< 255 = unused slot
  std::uint8_t arrayId;
  std::uint8_t extPathRecoveryEnabled;
  std::uint8_t utmLunEnabled;
  std::uint8_t utmLunNumber;
  std::uint32_t lunCount;
  std::uint32_t controllerCount;
};
ArrayInfoRecord ReadArrayInfoRecord(std::span<const std::uint8_t> bytes);

/// One path of a controller, with its congestion statistics.
struct TpgPathEntry {
  static constexpr std::size_t kSize = 228;

  std::uint8_t congestionPresent;
  std::uint8_t pathState;
  std::uint8_t interfaceType;
  std::uint32_t congestionStartTime; ///< seconds since 1970-01-01 00:00:00 UTC
  std::uint32_t congestionIntervalCount;
  std::uint32_t ioExceededCount;
  std::uint32_t populationSize;
  std::uint32_t avgIoResponse;
  std::uint32_t ioResponseTotal;
  std::uint64_t pathId;
  std::uint32_t pathIdExtension;
};

/// One controller (target port group) with its paths.
struct TpgControllerRecord {
  static constexpr std::size_t kSize = 32 + kPathEntries * TpgPathEntry::kSize;

  SerialNumberText serialNumber;
  std::uint8_t numberOfPaths; ///< as the driver gives it; may exceed the entries
  std::uint8_t serviceMode;
  std::uint8_t state;
  std::uint8_t designation; ///< 0 = controller A, else B
  std::array<TpgPathEntry, kPathEntries> paths;

  /// The path entries in use.
  std::span<const TpgPathEntry> PathsInUse() const;
};
TpgControllerRecord ReadTpgControllerRecord(std::span<const std::uint8_t> bytes);

/// A SCSI address: port, path (bus), target and LUN.
struct RecordScsiAddress {
  std::uint32_t length;
  std::uint8_t port;
  std::uint8_t path;
  std::uint8_t target;
  std::uint8_t lun;
};

/// One path of a LUN.
struct MpgPathEntry {
  static constexpr std::size_t kSize = 62;

  std::uint64_t pathId;
  std::uint32_t pathIdExtension;
  std::uint8_t accessState;
  std::array<std::uint8_t, 16> deviceInfo;
  std::uint8_t pathWeight;
  RecordScsiAddress scsiAddress;
  std::uint8_t lastGoodState;
  std::uint8_t previousStatus;
  std::uint16_t requestsInProgress;
  std::array<std::uint8_t, 6> flags; ///< IN, BR, US, IR, PR, SN
  std::uint32_t internalState;
};

/// One LUN (multipath device) with its paths.
struct MpgDeviceRecord {
  static constexpr std::size_t kSize = 142 + kPathEntries * MpgPathEntry::kSize;

  WwnCharacters wwn;
  std::array<wchar_t, 26> vendorProduct; ///< one UTF-16 unit per character, terminated
  std::uint8_t state;
  std::uint8_t failoverMethod;
  std::uint8_t numberOfPaths; ///< as the driver gives it; may exceed the entries
  std::uint8_t loadBalancePolicy;
  std::uint8_t persistThroughPowerLoss;
  std::uint8_t persistThroughPowerLossSent;
  std::uint8_t owningDesignation; ///< 0 = controller A, else B
  SerialNumberText owningSerialNumber;
  std::uint8_t preferredDesignation; ///< 0 = controller A, else B
  SerialNumberText preferredSerialNumber;
  std::array<char, 11> diskName; ///< at most 10 characters, terminated
  std::uint8_t throttled;
  std::uint8_t groupIoThrottled;
  std::uint32_t internalState;
  std::uint32_t tasBitStatus;
  std::uint8_t albStatus;
  std::array<MpgPathEntry, kPathEntries> paths;

  /// The path entries in use.
  std::span<const MpgPathEntry> PathsInUse() const;
  /// The LUN number, which stands in the first path entry.
  std::uint8_t LunNumber() const { return paths[0].scsiAddress.lun; }
};
MpgDeviceRecord ReadMpgDeviceRecord(std::span<const std::uint8_t> bytes);
/// The record's WWN alone.
WwnCharacters ReadMpgDeviceWwn(std::span<const std::uint8_t> bytes);

/// One path of a LUN as the device lists tell it.
struct DeviceInfoRecord {
  std::uint8_t pathState;
  std::uint8_t controller; ///< 0 = A, 255 = none, else B
  std::uint8_t port;
  std::uint8_t path;
  std::uint8_t target;
  std::uint8_t lun;
};
DeviceInfoRecord ReadDeviceInfoRecord(std::span<const std::uint8_t> bytes);

} // namespace korvex
