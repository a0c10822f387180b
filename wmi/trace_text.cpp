#include "wmi/trace_text.h"

#include "platform/text.h"

#include <climits>
#include <cwchar>
#include <new>

namespace korvex {

std::string NarrowText(const wchar_t* text) {
  const std::size_t length = text == nullptr ? 0 : std::wcslen(text);
  if (length == 0 || length > INT_MAX) {
    return {};
  }
  const int wideCount = static_cast<int>(length);
  const int bytes = WideCharToMultiByte(CP_ACP, 0, text, wideCount, nullptr, 0, nullptr, nullptr);
  if (bytes <= 0) {
    return {};
  }
  try {
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, wideCount, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

PointerText::PointerText(const void* pointer)
    : PointerText(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer))) {}

PointerText::PointerText(std::uint64_t handle) {
  for (std::size_t place = sizeof m_digits - 1; place-- > 0; handle >>= 4) {
    m_digits[place] = "0123456789ABCDEF"[handle & 0xF];
  }
  m_digits[sizeof m_digits - 1] = '\0';
}

} // namespace korvex
