#include "platform/allocation.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace platform {

void* AllocateStore(const char* /*storeName*/, std::uint64_t bytes) noexcept {
  void* store =
      bytes > kAllocationCap ? nullptr : std::calloc(1, static_cast<std::size_t>(std::max<std::uint64_t>(bytes, 1)));
  if (store == nullptr) {
    errno = ENOMEM;
  }
  return store;
}

void FreeStore(void* store) noexcept {
  std::free(store);
}

} // namespace platform
