#include "platform/allocation.h"
#include "platform/com.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/machine_access.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

// A BSTR points behind its length in bytes: the 32-bit number directly before the first unit. The block begins earlier,
// so that the units are aligned.

namespace {

constexpr std::size_t kHeaderBytes = 8;
static_assert(kHeaderBytes % alignof(OLECHAR) == 0 && kHeaderBytes >= sizeof(std::uint32_t));

char* BytesOf(BSTR text) {
  return static_cast<char*>(static_cast<void*>(text));
}

BSTR AllocateText(const OLECHAR* text, UINT length) {
  const platform::ErrnoGuard guard;
  const std::uint64_t textBytes = std::uint64_t{length} * sizeof(OLECHAR);
  const std::uint64_t blockBytes = kHeaderBytes + textBytes + sizeof(OLECHAR);
  if (blockBytes > platform::kAllocationCap) {
    return nullptr;
  }
  char* block = static_cast<char*>(std::calloc(1, static_cast<std::size_t>(blockBytes)));
  if (block == nullptr) {
    return nullptr;
  }
  const auto prefix = static_cast<std::uint32_t>(textBytes);
  std::memcpy(block + kHeaderBytes - sizeof(prefix), &prefix, sizeof(prefix));
  if (text != nullptr) {
    std::memcpy(block + kHeaderBytes, text, static_cast<std::size_t>(textBytes));
  }
  platform::gLiveBstrs.fetch_add(1, std::memory_order_relaxed);
  return static_cast<BSTR>(static_cast<void*>(block + kHeaderBytes));
}

} // namespace

BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr || platform::FaultOf("SysAllocString", text)) {
    return nullptr;
  }
  const std::size_t length = std::wcslen(text);
  return length > platform::kAllocationCap ? nullptr : AllocateText(text, static_cast<UINT>(length));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  return AllocateText(text, length);
}

void SysFreeString(BSTR text) {
  if (text == nullptr) {
    return;
  }
  const platform::ErrnoGuard guard;
  std::free(BytesOf(text) - kHeaderBytes);
  platform::gLiveBstrs.fetch_sub(1, std::memory_order_relaxed);
}

UINT SysStringLen(BSTR text) {
  if (text == nullptr) {
    return 0;
  }
  std::uint32_t bytes = 0;
  std::memcpy(&bytes, BytesOf(text) - sizeof(bytes), sizeof(bytes));
  return static_cast<UINT>(bytes / sizeof(OLECHAR));
}
