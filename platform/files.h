#pragma once

#include "platform/types.h"

#include <cstdio>

// Files.

namespace platform {

/// The standard library's fopen as Windows has it: none with errno set on failure, EACCES for a directory in any mode.
/// `path` is in the ANSI code page and may use either slash; `mode` is fopen's. Close with std::fclose.
std::FILE* OpenTextFile(const char* path, const char* mode) noexcept;

} // namespace platform
