#pragma once

#include <cstdint>
#include <span>

// The directory of record files beside the executable, and what stands in it.

namespace korvex {

inline constexpr std::size_t VRX_MAX_PATH = 260;

/// The directory with its closing backslash; empty until first built.
extern char gWwnDirPath[VRX_MAX_PATH];
/// The record file's name of the array read last, without the directory.
extern char gWwnFileName[VRX_MAX_PATH];

/// gWwnDirPath, built and made a directory the first time; none after a message.
const char* vrxUtilSys_SetWwnDirPath();

/// Forms gWwnFileName from the WWN in slot 0 of gModuleWWN, which must exist.
void FormWwnFileName();

/// Puts the directory before a file's name; what does not fit is cut, and the result is false.
bool FormFullPath(const char* fileName, char (&path)[VRX_MAX_PATH]);

/// Whether a full path names something in gWwnDirPath itself; otherwise false, with the last error of a name that
/// cannot be. The name of a generation-2 array's file is whatever text its driver gave as WWN.
bool IsInWwnDirectory(const char* path);

/// Whether the record file gWwnFileName exists in gWwnDirPath; false also after a message.
bool vrxUtilSys_DoesWwnDirPathFileExist();

/// One record file.
struct WwnFileEntry {
  std::uint8_t isSeen; ///< 0 or 1: the file of an array that is present
  char name[VRX_MAX_PATH + 1];
};

/// The record files in the directory's order.
class WwnFileList {
public:
  WwnFileList() = default;
  ~WwnFileList() { Release(); }
  WwnFileList(const WwnFileList&) = delete;
  WwnFileList& operator=(const WwnFileList&) = delete;

  /// Makes room for `room` files in place of what there was; false when there is no memory.
  bool Allocate(std::uint32_t room);
  void Release();
  bool Exists() const { return m_entries != nullptr; }
  std::span<WwnFileEntry> Entries() const { return {m_entries, numWwnFiles}; }
  /// Marks the entry with exactly this name as that of an array that is present.
  void MarkSeen(const char* name);

  /// Files stored.
  std::uint32_t numWwnFiles = 0;

private:
  friend int utilPrintWWNList(WwnFileList& list);

  WwnFileEntry* m_entries = nullptr;
};

/// Lists the record files; 1, or 0 after a message.
int utilPrintWWNList(WwnFileList& list);

} // namespace korvex
