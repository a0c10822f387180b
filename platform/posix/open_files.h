#pragma once

#include "platform/files.h"
#include "platform/posix/handle_table.h"

#include <cstdint>
#include <memory>
#include <string>
#include <sys/types.h>

// Files as their handles have them, and how they share.

namespace platform {

/// One open file or directory; closed with the last reference.
class OpenFile {
public:
  OpenFile(std::string name, DWORD access, DWORD sharing)
      : m_name(std::move(name)), m_access(access), m_sharing(sharing) {}
  ~OpenFile();
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  /// Opens the file with open()'s flags; a system error code, or 0. ERROR_SHARING_VIOLATION when what it is opened for
  /// is not shared by those who have it open, or the other way round.
  DWORD Open(int flags);

  int Descriptor() const { return m_descriptor; }
  /// As it was given, with slashes.
  const std::string& Name() const { return m_name; }
  bool Reads() const { return (m_access & GENERIC_READ) != 0; }
  bool Writes() const { return (m_access & GENERIC_WRITE) != 0; }

  /// Whether everybody who has the file open shares its deletion.
  static bool MayDelete(dev_t device, ino_t inode);

private:
  /// What this file, or a new one, must be shared for.
  DWORD Wanted() const { return (Reads() ? FILE_SHARE_READ : 0) | (Writes() ? FILE_SHARE_WRITE : 0); }
  bool Agrees(const OpenFile& other) const;

  std::string m_name;
  DWORD m_access;
  DWORD m_sharing;
  int m_descriptor = -1;
  dev_t m_device = 0;
  ino_t m_inode = 0;
};
using FileRef = std::shared_ptr<OpenFile>;

/// Of static life without an end, as the machine's.
HandleTable<FileRef>& OpenFiles();

} // namespace platform
