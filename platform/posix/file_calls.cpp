#include "platform/error.h"
#include "platform/files.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/handles.h"
#include "platform/posix/machine.h"
#include "platform/posix/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// Files by handle. What a described fault gives for WriteFile is the last error; nothing is written then.

namespace {

/// A file as its handle has it; closed with the last reference.
struct OpenFile {
  OpenFile(int descriptor, std::string name) : m_descriptor(descriptor), m_name(std::move(name)) {}
  ~OpenFile() { close(m_descriptor); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  int Descriptor() const { return m_descriptor; }
  const std::string& Name() const { return m_name; }

private:
  int m_descriptor;
  std::string m_name;
};
using FileRef = std::shared_ptr<OpenFile>;

/// Of static life without an end, as the machine's.
platform::HandleTable<FileRef>& OpenFiles() {
  static auto& files = *new platform::HandleTable<FileRef>;
  return files;
}

FileRef FileOf(HANDLE handle) {
  return OpenFiles().Find(reinterpret_cast<std::uintptr_t>(handle)).value_or(nullptr);
}

bool HasParent(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  struct stat status = {};
  return slash == std::string::npos || slash == 0 || stat(path.substr(0, slash).c_str(), &status) == 0;
}

/// The last error that stands for an errno value of a call on the path.
DWORD CodeOf(int error, const std::string& path) {
  switch (error) {
  case ENOENT:
    return HasParent(path) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  case ENOTDIR:
    return ERROR_PATH_NOT_FOUND;
  case EACCES:
  case EPERM:
  case EISDIR:
  case EROFS:
    return ERROR_ACCESS_DENIED;
  case EEXIST:
    return ERROR_ALREADY_EXISTS;
  case ENOSPC:
  case EDQUOT:
    return ERROR_DISK_FULL;
  case EMFILE:
  case ENFILE:
    return ERROR_TOO_MANY_OPEN_FILES;
  case ENAMETOOLONG:
    return ERROR_FILENAME_EXCED_RANGE;
  default:
    return ERROR_GEN_FAILURE;
  }
}

BOOL Fail(DWORD code) {
  SetLastError(code);
  return FALSE;
}

HANDLE FailToOpen(DWORD code) {
  SetLastError(code);
  return INVALID_HANDLE_VALUE;
}

int OpenFlags(DWORD access, DWORD disposition) {
  const bool reads = (access & GENERIC_READ) != 0;
  const bool writes = (access & GENERIC_WRITE) != 0;
  const int mode = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  switch (disposition) {
  case CREATE_NEW:
    return mode | O_CREAT | O_EXCL;
  case CREATE_ALWAYS:
    return mode | O_CREAT | O_TRUNC;
  case OPEN_ALWAYS:
    return mode | O_CREAT;
  default:
    return mode;
  }
}

HANDLE Open(const std::string& path, DWORD access, DWORD disposition, DWORD attributes) {
  struct stat status = {};
  const bool existed = stat(path.c_str(), &status) == 0;
  const bool isDirectory = existed && S_ISDIR(status.st_mode);
  if (isDirectory && ((attributes & FILE_FLAG_BACKUP_SEMANTICS) == 0 || (access & GENERIC_WRITE) != 0)) {
    return FailToOpen(ERROR_ACCESS_DENIED);
  }
  const int descriptor = open(path.c_str(), OpenFlags(access, disposition) | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    return FailToOpen(CodeOf(errno, path));
  }
  const std::uintptr_t handle = OpenFiles().Add(std::make_shared<OpenFile>(descriptor, path));
  if (disposition == OPEN_ALWAYS || disposition == CREATE_ALWAYS) {
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  }
  return reinterpret_cast<HANDLE>(handle); // NOLINT
}

/// Carries out `call(const OpenFile&)`, which gives a last error, on the file of a handle.
template <class Call>
BOOL Carry(HANDLE handle, const char* operation, Call call) noexcept {
  const platform::ErrnoGuard guard;
  const FileRef file = FileOf(handle);
  if (file == nullptr) {
    return Fail(ERROR_INVALID_HANDLE);
  }
  if (const auto fault = platform::FaultOf(operation, std::string_view(file->Name()))) {
    return Fail(*fault);
  }
  const DWORD code = call(*file);
  return code == ERROR_SUCCESS ? TRUE : Fail(code);
}

} // namespace

std::optional<std::uint32_t> platform::CloseFileHandle(std::uintptr_t handle) {
  const FileRef file = OpenFiles().Find(handle).value_or(nullptr);
  if (file == nullptr) {
    return std::nullopt;
  }
  const auto fault = FaultOf("CloseHandle", std::string_view(file->Name()));
  OpenFiles().Remove(handle);
  return fault.value_or(ERROR_SUCCESS);
}

HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD /*sharing*/, void* /*security*/, DWORD disposition,
                   DWORD attributes, HANDLE /*model*/) {
  const platform::ErrnoGuard guard;
  if (path == nullptr) {
    return FailToOpen(ERROR_INVALID_PARAMETER);
  }
  try {
    const std::string hostPath = platform::HostPath(path);
    if (const auto fault = platform::FaultOf("CreateFileA", std::string_view(hostPath))) {
      return FailToOpen(*fault);
    }
    return Open(hostPath, access, disposition, attributes);
  } catch (const std::bad_alloc&) {
    return FailToOpen(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, void* overlapped) {
  if (bytesRead == nullptr || overlapped != nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  *bytesRead = 0;
  return Carry(file, "ReadFile", [&](const OpenFile& open) -> DWORD {
    const ssize_t count = read(open.Descriptor(), buffer, bytes);
    *bytesRead = count < 0 ? 0 : static_cast<DWORD>(count);
    return count < 0 ? CodeOf(errno, open.Name()) : ERROR_SUCCESS;
  });
}

BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* bytesWritten, void* overlapped) {
  if (bytesWritten == nullptr || overlapped != nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  *bytesWritten = 0;
  return Carry(file, "WriteFile", [&](const OpenFile& open) -> DWORD {
    const ssize_t count = write(open.Descriptor(), buffer, bytes);
    *bytesWritten = count < 0 ? 0 : static_cast<DWORD>(count);
    return count < 0 ? CodeOf(errno, open.Name()) : ERROR_SUCCESS;
  });
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method) {
  DWORD position = INVALID_SET_FILE_POINTER;
  Carry(file, "SetFilePointer", [&](const OpenFile& open) -> DWORD {
    if (method > FILE_END) {
      return ERROR_INVALID_PARAMETER;
    }
    off_t offset = distance;
    if (distanceHigh != nullptr) {
      const auto upper = static_cast<std::uint64_t>(static_cast<std::uint32_t>(*distanceHigh)) << 32U;
      offset = static_cast<off_t>(upper | static_cast<std::uint32_t>(distance));
    }
    static constexpr int kMethods[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const off_t moved = lseek(open.Descriptor(), offset, kMethods[method]);
    if (moved < 0) {
      return ERROR_NEGATIVE_SEEK;
    }
    position = static_cast<DWORD>(moved);
    if (distanceHigh != nullptr) {
      *distanceHigh = static_cast<LONG>(moved >> 32U);
    }
    return ERROR_SUCCESS;
  });
  return position;
}

BOOL FlushFileBuffers(HANDLE file) {
  return Carry(file, "FlushFileBuffers", [](const OpenFile& open) -> DWORD {
    const int mode = fcntl(open.Descriptor(), F_GETFL) & O_ACCMODE;
    if (mode == O_RDONLY) {
      return ERROR_ACCESS_DENIED;
    }
    return fdatasync(open.Descriptor()) == 0 || errno == EINVAL ? ERROR_SUCCESS : CodeOf(errno, open.Name());
  });
}

namespace {

/// Carries out `call(path)`, which gives 0 or sets errno, on a path.
template <class Call>
BOOL CarryOnPath(LPCSTR path, const char* operation, Call call) noexcept {
  const platform::ErrnoGuard guard;
  if (path == nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  try {
    const std::string hostPath = platform::HostPath(path);
    if (const auto fault = platform::FaultOf(operation, std::string_view(hostPath))) {
      return Fail(*fault);
    }
    return call(hostPath.c_str()) == 0 ? TRUE : Fail(CodeOf(errno, hostPath));
  } catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

} // namespace

BOOL CreateDirectoryA(LPCSTR path, void* /*security*/) {
  return CarryOnPath(path, "CreateDirectoryA", [](const char* hostPath) {
    const int result = mkdir(hostPath, 0777);
    if (result != 0 && errno == ENOENT) {
      errno = ENOTDIR;
    }
    return result;
  });
}

BOOL DeleteFileA(LPCSTR path) {
  return CarryOnPath(path, "DeleteFileA", [](const char* hostPath) { return unlink(hostPath); });
}

DWORD GetModuleFileNameA(void* /*module*/, LPSTR path, DWORD size) {
  const platform::ErrnoGuard guard;
  if (const auto fault = platform::FaultOf("GetModuleFileNameA")) {
    SetLastError(*fault);
    // A path that does not fit fills its room.
    return *fault == ERROR_INSUFFICIENT_BUFFER ? size : 0;
  }
  char name[4096];
  const ssize_t length = readlink("/proc/self/exe", name, sizeof name);
  if (length <= 0 || size == 0) {
    SetLastError(length <= 0 ? ERROR_FILE_NOT_FOUND : ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  std::replace(name, name + length, '/', '\\');
  const auto kept = std::min(static_cast<DWORD>(length), size - 1);
  std::memcpy(path, name, kept);
  path[kept] = '\0';
  if (kept < static_cast<DWORD>(length)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
  }
  return kept;
}
