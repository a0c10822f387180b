#include "platform/files.h"

#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/paths.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace platform {

namespace {

std::FILE* Fail(int code) {
  errno = code;
  return nullptr;
}

bool IsDirectory(const std::string& path) {
  const ErrnoGuard guard;
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

std::FILE* OpenTextFile(const char* path, const char* mode) noexcept {
  if (const auto fault = FaultOf("fopen", std::string_view(path))) {
    return Fail(static_cast<int>(*fault));
  }
  const std::string hostPath = HostPath(path);
  if (IsDirectory(hostPath)) {
    return Fail(EACCES);
  }
  const int before = errno;
  std::FILE* file = std::fopen(hostPath.c_str(), mode);
  if (file != nullptr) {
    errno = before;
  }
  return file;
}

} // namespace platform
