#pragma once

#include <cstdint>
#include <new>
#include <utility>

// The heap as the utility uses it: stores with a name, whose allocation can fail and is always checked.

namespace platform {

/// A store above this size counts as one that cannot be allocated (1 GiB).
inline constexpr std::uint64_t kAllocationCap = std::uint64_t{1} << 30;

/// `bytes` zero-filled bytes (at least one is always there), aligned for any type, or nullptr with errno ENOMEM when
/// the heap refuses or `bytes` is above the cap. `storeName` is the name that the store's failure message carries
/// (static text). Release with FreeStore.
void* AllocateStore(const char* storeName, std::uint64_t bytes) noexcept;

/// Releases what AllocateStore gave; nullptr is allowed.
void FreeStore(void* store) noexcept;

/// A new object in a store of its own, or nullptr when the store cannot be allocated. Release with DeleteObject.
template <class T, class... Arguments>
T* NewObject(const char* storeName, Arguments&&... arguments) noexcept {
  void* store = AllocateStore(storeName, sizeof(T));
  return store == nullptr ? nullptr : new (store) T(std::forward<Arguments>(arguments)...);
}

/// Destroys and releases what NewObject gave; nullptr is allowed.
template <class T>
void DeleteObject(T* object) noexcept {
  if (object != nullptr) {
    object->~T();
    FreeStore(object);
  }
}

} // namespace platform
