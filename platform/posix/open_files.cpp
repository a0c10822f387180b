#include "platform/posix/open_files.h"

#include "platform/error.h"
#include "platform/posix/paths.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace platform {

namespace {

std::mutex gSharingLock;

/// The files that are open in this process; other processes share everything.
std::vector<const OpenFile*>& SharedFiles() {
  static auto& files = *new std::vector<const OpenFile*>;
  return files;
}

} // namespace

OpenFile::~OpenFile() {
  if (m_descriptor >= 0) {
    const std::scoped_lock lock(gSharingLock);
    std::erase(SharedFiles(), this);
    close(m_descriptor);
  }
}

DWORD OpenFile::Open(int flags) {
  const std::scoped_lock lock(gSharingLock);
  SharedFiles().reserve(SharedFiles().size() + 1);
  m_descriptor = open(m_name.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666);
  struct stat status = {};
  if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0) {
    return CodeOfErrno(errno, m_name);
  }
  m_device = status.st_dev;
  m_inode = status.st_ino;
  if (!std::ranges::all_of(SharedFiles(), [this](const OpenFile* other) { return Agrees(*other); })) {
    return ERROR_SHARING_VIOLATION;
  }
  SharedFiles().push_back(this);
  return ERROR_SUCCESS;
}

bool OpenFile::Agrees(const OpenFile& other) const {
  const bool isSame = other.m_device == m_device && other.m_inode == m_inode;
  return !isSame || ((Wanted() & ~other.m_sharing) == 0 && (other.Wanted() & ~m_sharing) == 0);
}

bool OpenFile::MayDelete(dev_t device, ino_t inode) {
  const std::scoped_lock lock(gSharingLock);
  return std::ranges::all_of(SharedFiles(), [&](const OpenFile* file) {
    return file->m_device != device || file->m_inode != inode || (file->m_sharing & FILE_SHARE_DELETE) != 0;
  });
}

HandleTable<FileRef>& OpenFiles() {
  static auto& files = *new HandleTable<FileRef>;
  return files;
}

} // namespace platform
