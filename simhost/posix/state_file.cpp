#include "simhost/state_file.h"

#include "simhost/state_log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simhost {

namespace {

[[noreturn]] void Fail(const std::string& path, std::string_view action) {
  const int code = errno;
  throw StateError(StateFileName(path) + ": cannot " + std::string(action) + ": " + std::strerror(code));
}

/// Closes the file at the end of its life.
class OpenFile {
public:
  explicit OpenFile(int file) : m_file(file) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (m_file >= 0) {
      close(m_file);
    }
  }
  int get() const { return m_file; }

private:
  int m_file;
};

bool WriteWhole(int file, std::string_view text, std::uint64_t offset) {
  while (!text.empty()) {
    const ssize_t written = pwrite(file, text.data(), text.size(), static_cast<off_t>(offset));
    if (written < 0 && errno != EINTR) {
      return false;
    }
    if (written > 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
      offset += static_cast<std::uint64_t>(written);
    }
  }
  return true;
}

/// Opens and locks the file; -1 when another file has taken its place meanwhile, so that it has to be tried again.
int TryLock(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) {
    Fail(path, "open");
  }
  while (flock(file, LOCK_EX) != 0) {
    if (errno != EINTR) {
      close(file);
      Fail(path, "lock");
    }
  }
  struct stat opened = {};
  struct stat named = {};
  if (fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
      opened.st_dev == named.st_dev) {
    return file;
  }
  close(file);
  return -1;
}

} // namespace

std::string StateFileName(const std::string& path) {
  return path.substr(path.find_last_of('/') + 1);
}

StateFileStatus StatusOfStateFile(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0) {
    return {status.st_ino, static_cast<std::uint64_t>(status.st_size)};
  }
  if (errno != ENOENT) {
    Fail(path, "find");
  }
  return {};
}

std::string ReadStateFile(const std::string& path, std::uint64_t offset) {
  std::string text;
  const OpenFile file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) {
    if (errno == ENOENT) {
      return text;
    }
    Fail(path, "open");
  }
  char buffer[16384];
  for (;;) {
    const ssize_t count = pread(file.get(), buffer, sizeof buffer, static_cast<off_t>(offset + text.size()));
    if (count == 0) {
      return text;
    }
    if (count < 0 && errno != EINTR) {
      Fail(path, "read");
    }
    text.append(buffer, count < 0 ? 0 : static_cast<std::size_t>(count));
  }
}

LockedStateFile::LockedStateFile(const std::string& path) : m_path(path) {
  int file = -1;
  while (file < 0) {
    file = TryLock(path);
  }
  m_file = file;
}

LockedStateFile::~LockedStateFile() {
  close(static_cast<int>(m_file));
}

void LockedStateFile::WriteAt(std::uint64_t offset, std::string_view text) {
  const int file = static_cast<int>(m_file);
  if (ftruncate(file, static_cast<off_t>(offset)) != 0) {
    Fail(m_path, "cut");
  }
  if (!WriteWhole(file, text, offset)) {
    const int code = errno;
    // What could not be cut off again is a truncated last line, which every reader passes over.
    [[maybe_unused]] const int ignored = ftruncate(file, static_cast<off_t>(offset));
    errno = code;
    Fail(m_path, "write");
  }
}

void LockedStateFile::ReplaceWith(std::string_view text) {
  const std::string fresh = m_path + ".new";
  const OpenFile file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (file.get() < 0 || !WriteWhole(file.get(), text, 0) || std::rename(fresh.c_str(), m_path.c_str()) != 0) {
    Fail(fresh, "write");
  }
}

} // namespace simhost
