#pragma once

#include <cstddef>
#include <cstdint>

// The layout of a record file: a line about the array, a line of column headings, a line for each LUN.

namespace korvex {

inline constexpr std::size_t kFirstLineLength = 88;
/// Column of a controller's state word, and the bytes from there that are searched for one.
inline constexpr std::size_t kStateColumns[] = {10, 32};
inline constexpr std::size_t kStateSearched = 22;
/// The array's name, and how many bytes of it are kept.
inline constexpr std::size_t kNameColumn = 54;
inline constexpr std::size_t kStoredNameLength = 33;
/// A heading, a LUN's number or a path.
inline constexpr std::size_t kCellLength = 10;
inline constexpr char kNoPathCell[] = "---------:";

/// Bytes of a line of cells: the field at its beginning, a cell for each path of either controller, a line feed.
constexpr std::uint64_t CellLineLength(std::uint64_t maxPaths) {
  return kCellLength + 2 * kCellLength * maxPaths + 1;
}

} // namespace korvex
