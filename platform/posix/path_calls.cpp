#include "platform/error.h"
#include "platform/files.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/open_files.h"
#include "platform/posix/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// The calls on paths: directories, deletion and the program's own path.

namespace {

BOOL Fail(DWORD code) {
  SetLastError(code);
  return FALSE;
}

/// Carries out `call(path)`, which gives a last error, on a path.
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
    const DWORD code = platform::HasForbiddenName(hostPath) ? ERROR_INVALID_NAME : call(hostPath);
    return code == ERROR_SUCCESS ? TRUE : Fail(code);
  } catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

DWORD MakeDirectory(const std::string& path) {
  if (mkdir(path.c_str(), 0777) == 0) {
    return ERROR_SUCCESS;
  }
  return errno == ENOENT ? ERROR_PATH_NOT_FOUND : platform::CodeOfErrno(errno, path);
}

DWORD Delete(const std::string& path) {
  constexpr mode_t kWritable = S_IWUSR | S_IWGRP | S_IWOTH;
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode) || (status.st_mode & kWritable) == 0) {
      return ERROR_ACCESS_DENIED;
    }
    if (!platform::OpenFile::MayDelete(status.st_dev, status.st_ino)) {
      return ERROR_SHARING_VIOLATION;
    }
  }
  return unlink(path.c_str()) == 0 ? ERROR_SUCCESS : platform::CodeOfErrno(errno, path);
}

/// Puts as much of the path as there is room for into `path`.
DWORD CopyPath(const std::string& whole, LPSTR path, DWORD size) {
  const auto kept = static_cast<DWORD>(std::min<std::size_t>(whole.size(), size == 0 ? 0 : size - 1));
  if (size != 0) {
    std::memcpy(path, whole.data(), kept);
    path[kept] = '\0';
  }
  return kept;
}

} // namespace

BOOL CreateDirectoryA(LPCSTR path, void* /*security*/) {
  return CarryOnPath(path, "CreateDirectoryA", MakeDirectory);
}

BOOL DeleteFileA(LPCSTR path) {
  return CarryOnPath(path, "DeleteFileA", Delete);
}

DWORD GetModuleFileNameA(void* /*module*/, LPSTR path, DWORD size) {
  const platform::ErrnoGuard guard;
  try {
    const auto fault = platform::FaultOf("GetModuleFileNameA");
    char name[4096];
    const ssize_t length = readlink("/proc/self/exe", name, sizeof name);
    const bool isRefused = fault && *fault != ERROR_INSUFFICIENT_BUFFER;
    if (length <= 0 || isRefused) {
      SetLastError(isRefused ? *fault : ERROR_FILE_NOT_FOUND);
      return 0;
    }
    const std::string whole = platform::WindowsPath(std::string(name, static_cast<std::size_t>(length)));
    const DWORD kept = CopyPath(whole, path, size);
    if (fault || kept < whole.size()) {
      SetLastError(ERROR_INSUFFICIENT_BUFFER);
      return size;
    }
    return kept;
  } catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
  }
}
