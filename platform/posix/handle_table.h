#pragma once

#include "platform/posix/machine_access.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

namespace platform {

/// The open handles of one kind of object. No value is ever given twice in a process, to whatever kind, so a handle
/// that was closed or is of another kind is not found.
template <class Object>
class HandleTable {
public:
  /// Keeps the object and gives its handle.
  std::uintptr_t Add(Object object) {
    const std::uintptr_t handle = kHandleStep * (1 + gHandlesEver.fetch_add(1, std::memory_order_relaxed));
    const std::scoped_lock lock(m_lock);
    m_objects.emplace(handle, std::move(object));
    gLiveHandles.fetch_add(1, std::memory_order_relaxed);
    return handle;
  }

  /// The object (a copy), or none when the handle is not open.
  std::optional<Object> Find(std::uintptr_t handle) const {
    const std::scoped_lock lock(m_lock);
    const auto found = m_objects.find(handle);
    return found == m_objects.end() ? std::nullopt : std::optional(found->second);
  }

  /// Closes the handle; false when it is not open.
  bool Remove(std::uintptr_t handle) {
    const std::scoped_lock lock(m_lock);
    const bool wasOpen = m_objects.erase(handle) != 0;
    gLiveHandles.fetch_sub(wasOpen ? 1 : 0, std::memory_order_relaxed);
    return wasOpen;
  }

private:
  static constexpr std::uintptr_t kHandleStep = 4;

  mutable std::mutex m_lock;
  std::unordered_map<std::uintptr_t, Object> m_objects;
};

} // namespace platform
