#pragma once

#include <cstdint>

// The array record read last; its id is gSelectedArrayId, its name and WWN stand in slot 0 of gModuleName and
// gModuleWWN, its interface-type codes in gInterfaceTypes. Filled by the list readers.

namespace korvex {

/// As the array record gives them, nonzero = yes.
extern std::uint8_t gUtmLunEnabled;
extern std::uint8_t gUtmLunNumber;
extern std::uint8_t gExtPathRecoveryEnabled;

/// What the array record announces; once its lists have been read, the number of records stored.
extern std::uint32_t gArrayLunCount;
extern std::uint32_t gArrayControllerCount;
/// `Size` of the controller record stored last.
extern std::uint32_t gTpgRecordSize;
/// Device-info records stored, and `Size` of the last one.
extern std::uint32_t gDevInfoCount;
extern std::uint32_t gDevInfoRecordSize;

} // namespace korvex
