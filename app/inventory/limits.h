#pragma once

#include <cstdint>

// Run-wide limits and the tables of module names and WWNs, shared by both interface generations.

namespace korvex {

/// A limit that has not been asked yet.
inline constexpr std::uint32_t kUnknownLimit = 0xFFFFFFFF;

extern std::uint32_t gUtilMaxLuns;
extern std::uint32_t gUtilMaxPaths;
/// The DSM's array modules (generation 1) or current arrays (generation 2); 0 after a failed request.
extern std::uint32_t MaxArrayModules;

/// Slots of 80 bytes; slot 0 holds the name of the array read last. At least one slot.
extern char* gModuleName;
/// Slots of 32 bytes (room for either generation); slot 0 holds the WWN of the array read last. At least one slot.
extern std::uint8_t* gModuleWWN;
inline constexpr std::uint32_t kModuleNameSlot = 80;
inline constexpr std::uint32_t kModuleWwnSlot = 32;

/// Sends the generation's request for MaxArrayModules; false, with MaxArrayModules left alone, when it failed.
bool AskForArrayCount();

/// Whether MaxArrayModules is what the DSM that the run talks to now has answered. A count of 0 is not when the last
/// request failed or came back empty; a count is kept when -D changes the DSM.
bool IsArrayCountTold();
/// Takes the limits and the count for unknown, as at the start of a process: for one that runs more than once.
void ForgetLimits();

/// 1 known, 0 the request failed, -1 the channel could not be opened.
int GetMaxArrayModules();

/// Makes the two tables; 1, 0 when one cannot be allocated, -1 when the channel could not be opened.
int InitModuleArrays();

} // namespace korvex
