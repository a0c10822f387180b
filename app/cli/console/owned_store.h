#pragma once

#include "platform/allocation.h"

#include <memory>

namespace korvex {

struct StoreRelease {
  void operator()(unsigned char* store) const noexcept { platform::FreeStore(store); }
};

/// A store for the length of one operation: zero-filled bytes, or none when it could not be allocated.
using OwnedStore = std::unique_ptr<unsigned char[], StoreRelease>;

/// `storeName` is static text, the name that the failure message carries.
inline OwnedStore MakeStore(const char* storeName, std::uint64_t bytes) {
  return OwnedStore(static_cast<unsigned char*>(platform::AllocateStore(storeName, bytes)));
}

} // namespace korvex
