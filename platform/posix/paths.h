#pragma once

#include "platform/types.h"

#include <string>

// Paths as the utility has them and as the host's file system does, and what becomes of a path that fails.

namespace platform {

/// Backslashes become slashes.
std::string HostPath(std::string path);
/// Slashes become backslashes.
std::string WindowsPath(std::string path);

/// Whether the last component of a host path has characters that no file name has on Windows.
bool HasForbiddenName(const std::string& path);

/// The system error code that stands for an errno value of a call on the host path: for ENOENT ERROR_FILE_NOT_FOUND, or
/// ERROR_PATH_NOT_FOUND when the directory is missing too.
DWORD CodeOfErrno(int error, const std::string& path);

} // namespace platform
