#include "wmi/text_copy.h"

#include "platform/allocation.h"

#include <cwchar>

namespace korvex {
namespace {

constexpr std::size_t kMaxTextLength = 2147483647;

} // namespace

HRESULT MeasureWideText(const wchar_t* text, std::size_t& length) {
  length = text == nullptr ? 0 : std::wcslen(text);
  return text == nullptr || length > kMaxTextLength ? STRSAFE_E_INVALID_PARAMETER : S_OK;
}

wchar_t* AllocateWideText(const char* storeName, std::size_t length) {
  return static_cast<wchar_t*>(platform::AllocateStore(storeName, (length + 1) * sizeof(wchar_t)));
}

HRESULT CopyWideText(wchar_t* target, std::size_t capacity, const wchar_t* text) {
  const std::size_t length = std::wcslen(text);
  if (length >= capacity) {
    return STRSAFE_E_INSUFFICIENT_BUFFER;
  }
  std::wmemcpy(target, text, length + 1);
  return S_OK;
}

} // namespace korvex
