#include "platform/files.h"

std::FILE* platform::OpenTextFile(const char* path, const char* mode) noexcept {
  return std::fopen(path, mode);
}
