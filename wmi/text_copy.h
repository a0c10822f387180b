#pragma once

#include "platform/allocation.h"

#include <cstddef>
#include <cstdint>
#include <cwchar>

namespace korvex {

/// The most characters that a text may have.
inline constexpr std::size_t kMaxTextLength = 2147483647;

/// The length of a wide text, or SIZE_MAX (above kMaxTextLength) for none.
inline std::size_t MeasureWideText(const wchar_t* text) {
  return text == nullptr ? SIZE_MAX : std::wcslen(text);
}

/// A copy of a wide text of `length` characters, with a terminator, in a store of its own (platform::FreeStore); none
/// when it cannot be allocated.
inline wchar_t* CopyWideText(const char* storeName, const wchar_t* text, std::size_t length) {
  auto* copy = static_cast<wchar_t*>(platform::AllocateStore(storeName, (length + 1) * sizeof(wchar_t)));
  if (copy != nullptr) {
    std::wmemcpy(copy, text, length);
  }
  return copy;
}

} // namespace korvex
