#pragma once

#include <cstdint>

// What the MPIO framework tells of the paths' adapters.

namespace korvex {

/// One path's adapter and where it is plugged in.
struct PathInformationEntry {
  std::uint64_t PathId;
  std::uint8_t BusNumber;
  std::uint8_t DeviceNumber;
  std::uint8_t FunctionNumber;
  wchar_t AdapterName[64]; ///< at most 63 UTF-16 units, terminated
};

/// A count and as many entries behind it; entries that the framework did not fill are zero.
struct alignas(PathInformationEntry) PathInformation {
  std::uint32_t count;

  PathInformationEntry* Entries() { return reinterpret_cast<PathInformationEntry*>(this + 1); }
  const PathInformationEntry* Entries() const { return reinterpret_cast<const PathInformationEntry*>(this + 1); }
};

/// Made by ReadPathInformation, freed at the end of the run with platform::FreeStore; none before.
extern PathInformation* gPathInformation;

/// Connects the channel afresh, reads the framework's path list into gPathInformation and closes the connection; true
/// once the framework has told its number of paths.
bool ReadPathInformation();

} // namespace korvex
