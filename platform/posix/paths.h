#pragma once

#include <string>

// Paths as the utility has them, and as the host's file system does.

namespace platform {

/// Backslashes become slashes.
std::string HostPath(std::string path);
/// Slashes become backslashes.
std::string WindowsPath(std::string path);

} // namespace platform
