#include "platform/allocation.h"

#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/machine.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string_view>

namespace platform {

namespace {

using LiveCount = std::atomic<std::uint64_t>;

/// Stands before the bytes of each store; the count of its name lives as long as the process.
struct alignas(std::max_align_t) StoreHeader {
  LiveCount* live;
};

struct LiveStores {
  std::mutex mutex;
  std::map<std::string_view, LiveCount> countOfName;
};

LiveStores& TheLiveStores() {
  // Never destroyed: stores of static life are released after everything else.
  static auto& stores = *new LiveStores;
  return stores;
}

LiveCount& CountOf(const char* storeName) {
  LiveStores& stores = TheLiveStores();
  const std::scoped_lock lock(stores.mutex);
  return stores.countOfName[storeName];
}

void* OutOfMemory() {
  errno = ENOMEM;
  return nullptr;
}

} // namespace

void* AllocateStore(const char* storeName, std::uint64_t bytes) noexcept {
  if (bytes > kAllocationCap || FaultOf("AllocateStore", std::string_view(storeName))) {
    return OutOfMemory();
  }
  const auto size = static_cast<std::size_t>(std::max<std::uint64_t>(bytes, 1));
  void* block = std::calloc(1, sizeof(StoreHeader) + size);
  if (block == nullptr) {
    return OutOfMemory();
  }
  auto* header = new (block) StoreHeader{&CountOf(storeName)};
  header->live->fetch_add(1, std::memory_order_relaxed);
  return header + 1;
}

void FreeStore(void* store) noexcept {
  if (store == nullptr) {
    return;
  }
  const ErrnoGuard guard;
  StoreHeader* header = static_cast<StoreHeader*>(store) - 1;
  header->live->fetch_sub(1, std::memory_order_relaxed);
  std::free(header);
}

void VisitLiveStores(void (*visit)(const char* storeName, std::uint64_t count, void* context), void* context) {
  LiveStores& stores = TheLiveStores();
  const std::scoped_lock lock(stores.mutex);
  for (const auto& [name, live] : stores.countOfName) {
    const std::uint64_t count = live.load(std::memory_order_relaxed);
    if (count != 0) {
      visit(name.data(), count, context);
    }
  }
}

} // namespace platform
