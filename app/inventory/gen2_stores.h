#pragma once

#include "app/inventory/gen2_records.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

// The stores that a generation-2 collection fills with the drivers' raw records, and the scratch buffers of the
// reports. Made by the first single-array collection, freed at the end of the run with platform::FreeStore; all eight
// exist or none of them.

namespace korvex {

/// Controller records, record k at kTpgRecordPlace x k.
extern unsigned char* gTpgInfoBuffer;
/// LUN records, record i at kMpgRecordPlace x i.
extern unsigned char* gMpgInfoBuffer;
/// Device-info records in list order, record i at kDevInfoRecordPlace x i.
extern unsigned char* gDevInfoBuffer;
/// One controller serial number: 10 characters and a zero.
extern unsigned char* gCntrlSlNumber;
/// One LUN WWN: 32 characters.
extern unsigned char* gLunWWN;
/// One path identifier (8 bytes) and its extension (4 bytes) each.
extern unsigned char* gLunPathId;
extern unsigned char* gCntrlPathId;
/// The 16 DeviceInfo bytes of one path.
extern unsigned char* gLunPathDevInfo;

/// Interface-type code of each of the current array's path slots, 255 for an unused one; 64 bytes, made by the first
/// GetDsmArrayInfo and freed at the end of the run with platform::FreeStore.
extern unsigned char* gInterfaceTypes;

inline constexpr std::size_t kTpgInfoCapacity = 14657;
inline constexpr std::size_t kMpgInfoCapacity = 542131;
inline constexpr std::size_t kDevInfoCapacity = 979201;
inline constexpr std::size_t kInterfaceTypesCapacity = 64;

/// Every record has a place of its own, whatever the size of the one before it; what is behind a short record there is
/// zero.
inline constexpr std::size_t kTpgRecordPlace = TpgControllerRecord::kSize;
inline constexpr std::size_t kMpgRecordPlace = MpgDeviceRecord::kSize;
inline constexpr std::size_t kDevInfoRecordPlace = 70;
/// How many records have a place.
inline constexpr std::uint32_t kMaxTpgRecords = 2;
inline constexpr std::uint32_t kMaxMpgRecords = 255;
inline constexpr std::uint32_t kMaxDevInfoRecords = 255;

/// Makes what is missing of the eight stores, zero-filled; false after a message on standard error, and none is left
/// then.
bool AllocateGen2Buffers();

/// Stored controller record `index` (below gArrayControllerCount), decoded; all zero where no store has such a place.
TpgControllerRecord StoredController(std::uint32_t index);
/// Stored LUN record `index` (below gArrayLunCount), decoded; all zero where no store has such a place.
MpgDeviceRecord StoredLun(std::uint32_t index);

/// Stored device-info record `index` (below gDevInfoCount), decoded; all zero where no store has such a place.
DeviceInfoRecord StoredDevice(std::uint32_t index);
/// The stored LUN record with this WWN, decoded.
std::optional<MpgDeviceRecord> FindStoredLun(const WwnCharacters& wwn);

} // namespace korvex
