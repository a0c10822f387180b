#pragma once

#include "platform/handles.h"

#include <utility>

namespace platform {

/// Owns what CloseHandle closes: move-only, without implicit conversions, closing it at the end of its life.
class FileHandle {
public:
  FileHandle() = default;
  explicit FileHandle(HANDLE owned) noexcept : m_handle(owned) {}
  FileHandle(FileHandle&& other) noexcept : m_handle(other.release()) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    reset(other.release());
    return *this;
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() { reset(); }

  HANDLE get() const noexcept { return m_handle; }
  explicit operator bool() const noexcept { return m_handle != INVALID_HANDLE_VALUE; }

  /// Gives up what is held, for whoever closes it with an eye on the result.
  HANDLE release() noexcept { return std::exchange(m_handle, INVALID_HANDLE_VALUE); }
  /// Closes what is held and takes over `owned`.
  void reset(HANDLE owned = INVALID_HANDLE_VALUE) noexcept {
    const HANDLE before = std::exchange(m_handle, owned);
    if (before != INVALID_HANDLE_VALUE) {
      CloseHandle(before);
    }
  }

private:
  HANDLE m_handle = INVALID_HANDLE_VALUE;
};

} // namespace platform
