#pragma once

#include <cstdint>

// Finding the arrays that the DSM offers, by index.

namespace korvex {

/// Selects one array by its id for the generation-2 collections that follow, which print nothing.
void SelectArrayQuietly(std::uint32_t index);

/// Reads one array by index into the inventory's current-array state; false when there is none, and when it cannot be
/// read. The module tables must exist.
bool ReadArrayByIndex(std::uint32_t index);

/// Whether the array read last, also one that could not be read whole, has told its WWN.
bool IsArrayNamed();

/// The same in generation 2, where a record may have ended within the WWN.
bool IsWwnTextWhole();

/// Indexes from 0 that are tried for `count` arrays, which need not follow one another: four times as many, as far as
/// they can be array ids.
std::uint64_t IndexesFor(std::uint32_t count);

} // namespace korvex
