#include "platform/posix/paths.h"

#include "platform/error.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>

namespace platform {

namespace {

bool HasParent(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  struct stat status = {};
  return slash == std::string::npos || slash == 0 || stat(path.substr(0, slash).c_str(), &status) == 0;
}

} // namespace

std::string HostPath(std::string path) {
  std::ranges::replace(path, '\\', '/');
  return path;
}

std::string WindowsPath(std::string path) {
  std::ranges::replace(path, '/', '\\');
  return path;
}

bool HasForbiddenName(const std::string& path) {
  constexpr std::string_view kForbidden = "<>:\"|?*";
  const std::size_t slash = path.rfind('/');
  return std::any_of(path.begin() + static_cast<std::ptrdiff_t>(slash + 1), path.end(), [&](char character) {
    return static_cast<unsigned char>(character) < ' ' || kForbidden.find(character) != std::string_view::npos;
  });
}

DWORD CodeOfErrno(int error, const std::string& path) {
  switch (error) {
  case ENOENT:
    return HasParent(path) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  case ENOTDIR:
  case ELOOP:
    return ERROR_PATH_NOT_FOUND;
  case EACCES:
  case EPERM:
  case EISDIR:
    return ERROR_ACCESS_DENIED;
  case EROFS:
    return ERROR_WRITE_PROTECT;
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
  case ENOMEM:
    return ERROR_NOT_ENOUGH_MEMORY;
  case EIO:
    return ERROR_IO_DEVICE;
  default:
    return ERROR_GEN_FAILURE;
  }
}

} // namespace platform
