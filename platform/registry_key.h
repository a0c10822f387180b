#pragma once

#include "platform/registry.h"

#include <utility>

namespace platform {

/// Owns an open registry key: move-only, without implicit conversions, closing it at the end of its life.
class RegKey {
public:
  RegKey() = default;
  RegKey(RegKey&& other) noexcept : m_key(std::exchange(other.m_key, nullptr)) {}
  RegKey& operator=(RegKey&& other) noexcept {
    reset(std::exchange(other.m_key, nullptr));
    return *this;
  }
  RegKey(const RegKey&) = delete;
  RegKey& operator=(const RegKey&) = delete;
  ~RegKey() { reset(); }

  HKEY get() const noexcept { return m_key; }
  explicit operator bool() const noexcept { return m_key != nullptr; }

  /// The address for a call that fills it; what was held is closed first.
  PHKEY put() noexcept {
    reset();
    return &m_key;
  }
  /// Closes what is held and takes over `owned`.
  void reset(HKEY owned = nullptr) noexcept {
    const HKEY before = std::exchange(m_key, owned);
    if (before != nullptr) {
      RegCloseKey(before);
    }
  }

private:
  HKEY m_key = nullptr;
};

} // namespace platform
