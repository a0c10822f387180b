#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The state log's file: a shared file that is read without a lock and changed under one.

namespace simhost {

/// Which file a path names now (0 for none) and how long it is.
struct StateFileStatus {
  std::uint64_t id = 0;
  std::uint64_t size = 0;
};

/// The file's name without its directory, as messages name it.
std::string StateFileName(const std::string& path);

/// None when the path names no file. Throws StateError when it cannot be told.
StateFileStatus StatusOfStateFile(const std::string& path);

/// What stands in the file from `offset` on; empty when there is no file. Throws StateError.
std::string ReadStateFile(const std::string& path, std::uint64_t offset);

/// The file, open and locked against every other run for its life; made when it is not there. Every operation throws
/// StateError.
class LockedStateFile {
public:
  explicit LockedStateFile(const std::string& path);
  LockedStateFile(const LockedStateFile&) = delete;
  LockedStateFile& operator=(const LockedStateFile&) = delete;
  ~LockedStateFile();

  /// Writes `text` at `offset` and ends the file there; a failed write leaves the file ending at `offset`.
  void WriteAt(std::uint64_t offset, std::string_view text);

  /// Puts a file with that text in the place of this one, whole or not at all.
  void ReplaceWith(std::string_view text);

private:
  std::string m_path;
  std::intptr_t m_file = -1; ///< the system's descriptor or handle
};

} // namespace simhost
