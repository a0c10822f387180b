#include "simhost/state_file.h"

#include "simhost/state_log.h"

#include <windows.h>

namespace simhost {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
/// How often a file that a reader still has open is asked for again, a millisecond apart.
constexpr int kTries = 1000;

[[noreturn]] void Fail(const std::string& path, std::string_view action, DWORD code) {
  throw StateError(StateFileName(path) + ": cannot " + std::string(action) + ": error " + std::to_string(code));
}

/// Closes the file at the end of its life.
class OpenFile {
public:
  explicit OpenFile(HANDLE file) : m_file(file) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (IsOpen()) {
      CloseHandle(m_file);
    }
  }
  bool IsOpen() const { return m_file != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return m_file; }

private:
  HANDLE m_file;
};

HANDLE Open(const std::string& path, DWORD access, DWORD disposition) {
  return CreateFileA(path.c_str(), access, kShareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

StateFileStatus StatusOf(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION status = {};
  if (!GetFileInformationByHandle(file, &status)) {
    return {};
  }
  return {(static_cast<std::uint64_t>(status.nFileIndexHigh) << 32) | status.nFileIndexLow,
          (static_cast<std::uint64_t>(status.nFileSizeHigh) << 32) | status.nFileSizeLow};
}

OVERLAPPED PlaceOf(std::uint64_t offset) {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

bool WriteWhole(HANDLE file, std::string_view text, std::uint64_t offset) {
  while (!text.empty()) {
    OVERLAPPED place = PlaceOf(offset);
    DWORD written = 0;
    if (!WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, &place)) {
      return false;
    }
    text.remove_prefix(written);
    offset += written;
  }
  return true;
}

bool EndAt(HANDLE file, std::uint64_t offset) {
  LARGE_INTEGER end = {};
  end.QuadPart = static_cast<LONGLONG>(offset);
  return SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file);
}

} // namespace

std::string StateFileName(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

StateFileStatus StatusOfStateFile(const std::string& path) {
  const OpenFile file(Open(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING));
  if (file.IsOpen()) {
    return StatusOf(file.get());
  }
  if (GetLastError() != ERROR_FILE_NOT_FOUND) {
    Fail(path, "find", GetLastError());
  }
  return {};
}

std::string ReadStateFile(const std::string& path, std::uint64_t offset) {
  std::string text;
  const OpenFile file(Open(path, GENERIC_READ, OPEN_EXISTING));
  if (!file.IsOpen()) {
    if (GetLastError() == ERROR_FILE_NOT_FOUND) {
      return text;
    }
    Fail(path, "open", GetLastError());
  }
  char buffer[16384];
  for (;;) {
    OVERLAPPED place = PlaceOf(offset + text.size());
    DWORD count = 0;
    const bool read = ReadFile(file.get(), buffer, sizeof buffer, &count, &place);
    if (!read && GetLastError() != ERROR_HANDLE_EOF) {
      Fail(path, "read", GetLastError());
    }
    if (!read || count == 0) {
      return text;
    }
    text.append(buffer, count);
  }
}

LockedStateFile::LockedStateFile(const std::string& path) : m_path(path) {
  // Locks are mandatory, and no file is put in the place of an open one: so it is a file beside it that is locked.
  const HANDLE file = Open(path + ".lock", GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
  if (file == INVALID_HANDLE_VALUE) {
    Fail(path, "open", GetLastError());
  }
  OVERLAPPED place = PlaceOf(0);
  if (!LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place)) {
    const DWORD code = GetLastError();
    CloseHandle(file);
    Fail(path, "lock", code);
  }
  m_file = reinterpret_cast<std::intptr_t>(file);
}

LockedStateFile::~LockedStateFile() {
  CloseHandle(reinterpret_cast<HANDLE>(m_file));
}

void LockedStateFile::WriteAt(std::uint64_t offset, std::string_view text) {
  const OpenFile file(Open(m_path, GENERIC_WRITE, OPEN_ALWAYS));
  if (!file.IsOpen() || !EndAt(file.get(), offset)) {
    Fail(m_path, "cut", GetLastError());
  }
  if (!WriteWhole(file.get(), text, offset)) {
    const DWORD code = GetLastError();
    // What could not be cut off again is a truncated last line, which every reader passes over.
    EndAt(file.get(), offset);
    Fail(m_path, "write", code);
  }
}

void LockedStateFile::ReplaceWith(std::string_view text) {
  const std::string fresh = m_path + ".new";
  {
    const OpenFile file(Open(fresh, GENERIC_WRITE, CREATE_ALWAYS));
    if (!file.IsOpen() || !WriteWhole(file.get(), text, 0)) {
      Fail(fresh, "write", GetLastError());
    }
  }
  for (int tries = 1; !MoveFileExA(fresh.c_str(), m_path.c_str(), MOVEFILE_REPLACE_EXISTING); ++tries) {
    if (tries == kTries) {
      Fail(fresh, "rename", GetLastError());
    }
    Sleep(1);
  }
}

} // namespace simhost
