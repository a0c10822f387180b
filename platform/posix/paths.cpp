#include "platform/posix/paths.h"

#include <algorithm>

namespace platform {

std::string HostPath(std::string path) {
  std::ranges::replace(path, '\\', '/');
  return path;
}

std::string WindowsPath(std::string path) {
  std::ranges::replace(path, '/', '\\');
  return path;
}

} // namespace platform
