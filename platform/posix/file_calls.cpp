#include "platform/error.h"
#include "platform/files.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handles.h"
#include "platform/posix/open_files.h"
#include "platform/posix/paths.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// Files by handle.

namespace {

using platform::CodeOfErrno;
using platform::FileRef;
using platform::OpenFile;
using platform::OpenFiles;

BOOL Fail(DWORD code) {
  SetLastError(code);
  return FALSE;
}

HANDLE FailToOpen(DWORD code) {
  SetLastError(code);
  return INVALID_HANDLE_VALUE;
}

constexpr mode_t kWritable = S_IWUSR | S_IWGRP | S_IWOTH;

int OpenFlags(DWORD access, DWORD disposition) {
  const bool reads = (access & GENERIC_READ) != 0;
  const bool writes = (access & GENERIC_WRITE) != 0;
  const int mode = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  return disposition == OPEN_ALWAYS ? mode | O_CREAT : mode;
}

/// Whether a file with that mode may be opened so. A file that nobody may write is what Windows calls read-only, also
/// for those whom the host lets write everything.
bool MayOpen(const struct stat& status, DWORD access, DWORD attributes) {
  const bool writes = (access & GENERIC_WRITE) != 0;
  if (S_ISDIR(status.st_mode)) {
    return (attributes & FILE_FLAG_BACKUP_SEMANTICS) != 0 && !writes;
  }
  constexpr mode_t kReadable = S_IRUSR | S_IRGRP | S_IROTH;
  const bool reads = (access & GENERIC_READ) != 0;
  return S_ISREG(status.st_mode) && (!writes || (status.st_mode & kWritable) != 0) &&
         (!reads || (status.st_mode & kReadable) != 0);
}

HANDLE Open(const std::string& path, DWORD access, DWORD sharing, DWORD disposition, DWORD attributes) {
  if (platform::HasForbiddenName(path)) {
    return FailToOpen(ERROR_INVALID_NAME);
  }
  struct stat status = {};
  const bool existed = stat(path.c_str(), &status) == 0;
  if (existed && !MayOpen(status, access, attributes)) {
    return FailToOpen(ERROR_ACCESS_DENIED);
  }
  auto file = std::make_shared<OpenFile>(path, access, sharing);
  if (const DWORD code = file->Open(OpenFlags(access, disposition)); code != ERROR_SUCCESS) {
    return FailToOpen(code);
  }
  const std::uintptr_t handle = OpenFiles().Add(std::move(file));
  if (disposition == OPEN_ALWAYS) {
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  }
  return reinterpret_cast<HANDLE>(handle); // NOLINT
}

FileRef FileOf(HANDLE handle) {
  return OpenFiles().Find(reinterpret_cast<std::uintptr_t>(handle)).value_or(nullptr);
}

/// Carries out `call(const OpenFile&)`, which gives a last error, on the file of a handle.
template <class Call>
BOOL Carry(HANDLE handle, Call call) noexcept {
  const platform::ErrnoGuard guard;
  const FileRef file = FileOf(handle);
  if (file == nullptr) {
    return Fail(ERROR_INVALID_HANDLE);
  }
  const DWORD code = call(*file);
  return code == ERROR_SUCCESS ? TRUE : Fail(code);
}

/// Reads or writes `bytes` bytes with `transfer(offset, bytes)`, a POSIX call on the file, until it gives no more;
/// `*transferred` counts them unless the call fails. A described fault comes in place of it or behind its first bytes.
template <class Transfer>
BOOL CarryTransfer(HANDLE handle, const char* operation, bool (OpenFile::*isAllowed)() const, DWORD bytes,
                   DWORD* transferred, void* overlapped, Transfer transfer) noexcept {
  if (transferred == nullptr || overlapped != nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  *transferred = 0;
  return Carry(handle, [&](const OpenFile& file) -> DWORD {
    if (!(file.*isAllowed)()) {
      return ERROR_ACCESS_DENIED;
    }
    const platform::TransferFault fault = platform::TransferFaultOf(operation, file.Name());
    const DWORD most = fault.code ? fault.count.value_or(0) : std::min(bytes, fault.count.value_or(bytes));
    DWORD done = 0;
    while (done < std::min(most, bytes)) {
      const ssize_t count = transfer(file.Descriptor(), done, std::min(most, bytes) - done);
      if (count < 0 && errno != EINTR) {
        return CodeOfErrno(errno, file.Name());
      }
      if (count == 0) {
        break;
      }
      done += count < 0 ? 0 : static_cast<DWORD>(count);
    }
    *transferred = fault.code ? 0 : done;
    return fault.code.value_or(ERROR_SUCCESS);
  });
}

} // namespace

std::optional<std::uint32_t> platform::CloseFileHandle(std::uintptr_t handle) {
  const FileRef file = OpenFiles().Find(handle).value_or(nullptr);
  return file == nullptr ? std::nullopt : std::optional(CloseIn(OpenFiles(), handle, file->Name()));
}

HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD sharing, void* /*security*/, DWORD disposition, DWORD attributes,
                   HANDLE /*model*/) {
  const platform::ErrnoGuard guard;
  if (path == nullptr || (disposition != OPEN_EXISTING && disposition != OPEN_ALWAYS)) {
    return FailToOpen(ERROR_INVALID_PARAMETER);
  }
  try {
    const std::string hostPath = platform::HostPath(path);
    if (const auto fault = platform::FaultOf("CreateFileA", std::string_view(hostPath))) {
      return FailToOpen(*fault);
    }
    return Open(hostPath, access, sharing, disposition, attributes);
  } catch (const std::bad_alloc&) {
    return FailToOpen(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, void* overlapped) {
  return CarryTransfer(file, "ReadFile", &OpenFile::Reads, bytes, bytesRead, overlapped,
                       [&](int descriptor, DWORD offset, DWORD rest) {
                         return read(descriptor, static_cast<char*>(buffer) + offset, rest);
                       });
}

BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* bytesWritten, void* overlapped) {
  return CarryTransfer(file, "WriteFile", &OpenFile::Writes, bytes, bytesWritten, overlapped,
                       [&](int descriptor, DWORD offset, DWORD rest) {
                         return write(descriptor, static_cast<const char*>(buffer) + offset, rest);
                       });
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method) {
  DWORD position = INVALID_SET_FILE_POINTER;
  Carry(file, [&](const OpenFile& open) -> DWORD {
    if (const auto fault = platform::FaultOf("SetFilePointer", std::string_view(open.Name()))) {
      return *fault;
    }
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
  return Carry(file, [](const OpenFile& open) -> DWORD {
    if (const auto fault = platform::FaultOf("FlushFileBuffers", std::string_view(open.Name()))) {
      return *fault;
    }
    if (!open.Writes()) {
      return ERROR_ACCESS_DENIED;
    }
    // EINVAL: what holds no data of its own, such as a pipe.
    return fdatasync(open.Descriptor()) == 0 || errno == EINVAL ? ERROR_SUCCESS : CodeOfErrno(errno, open.Name());
  });
}
