#include "app/cli/console/bounded_text.h"

#include "app/cli/console/errno_keeper.h"
#include "app/cli/console/formatted_text.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>

namespace korvex {

namespace {

constexpr std::size_t kLargestCapacity = 2147483647;

bool IsUsableCapacity(std::size_t capacity) {
  return capacity != 0 && capacity <= kLargestCapacity;
}

std::size_t TextLength(const char* text) {
  return std::strlen(text);
}
std::size_t TextLength(const wchar_t* text) {
  return std::wcslen(text);
}

/// The characters before the terminator, or `capacity` when there is none within it.
template <class Character>
std::size_t LengthWithin(const Character* text, std::size_t capacity) {
  std::size_t length = 0;
  while (length < capacity && text[length] != Character{}) {
    ++length;
  }
  return length;
}

/// Copies what fits of `length` characters and terminates them; `capacity` is usable.
template <class Character>
HRESULT CopyCharacters(Character* buffer, std::size_t capacity, const Character* text, std::size_t length) {
  const std::size_t fitting = std::min(length, capacity - 1);
  std::copy_n(text, fitting, buffer);
  buffer[fitting] = Character{};
  return fitting < length ? STRSAFE_E_INSUFFICIENT_BUFFER : S_OK;
}

template <class Character>
HRESULT Copy(Character* buffer, std::size_t capacity, const Character* text) {
  if (!IsUsableCapacity(capacity)) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  return CopyCharacters(buffer, capacity, text, TextLength(text));
}

template <class Character>
HRESULT Append(Character* buffer, std::size_t capacity, const Character* text) {
  if (!IsUsableCapacity(capacity)) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  const std::size_t held = LengthWithin(buffer, capacity);
  if (held == capacity) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  return CopyCharacters(buffer + held, capacity - held, text, TextLength(text));
}

template <class Character>
HRESULT Length(const Character* text, std::size_t capacity, std::size_t* length) {
  *length = 0;
  if (text == nullptr || !IsUsableCapacity(capacity)) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  const std::size_t found = LengthWithin(text, capacity);
  if (found == capacity) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  *length = found;
  return S_OK;
}

/// Converts the whole text, then copies what fits of it: how many wide characters some bytes make depends on the code
/// page.
HRESULT CopyWidened(wchar_t* buffer, std::size_t capacity, const FormattedText& text) {
  buffer[0] = L'\0';
  if (text.Length() == 0) {
    return text.Succeeded() ? S_OK : STRSAFE_E_INSUFFICIENT_BUFFER;
  }
  if (text.Length() > kLargestCapacity) {
    return STRSAFE_E_INSUFFICIENT_BUFFER;
  }
  const int bytes = static_cast<int>(text.Length());
  const int wideCount = MultiByteToWideChar(CP_ACP, 0, text.Text(), bytes, nullptr, 0);
  const std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[static_cast<std::size_t>(wideCount)]);
  if (wide == nullptr || MultiByteToWideChar(CP_ACP, 0, text.Text(), bytes, wide.get(), wideCount) == 0) {
    return STRSAFE_E_INSUFFICIENT_BUFFER;
  }
  const HRESULT result = CopyCharacters(buffer, capacity, wide.get(), static_cast<std::size_t>(wideCount));
  return text.Succeeded() ? result : STRSAFE_E_INSUFFICIENT_BUFFER;
}

} // namespace

HRESULT BoundedFormat(char* buffer, std::size_t capacity, const char* format, ...) {
  if (!IsUsableCapacity(capacity)) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  const ErrnoKeeper errnoKeeper;
  std::va_list values;
  va_start(values, format);
  const int needed = std::vsnprintf(buffer, capacity, format, values);
  va_end(values);
  if (needed < 0) {
    buffer[0] = '\0';
    return STRSAFE_E_INSUFFICIENT_BUFFER;
  }
  return static_cast<std::size_t>(needed) < capacity ? S_OK : STRSAFE_E_INSUFFICIENT_BUFFER;
}

HRESULT BoundedWideFormat(wchar_t* buffer, std::size_t capacityBytes, const char* format, ...) {
  const std::size_t capacity = capacityBytes / sizeof(wchar_t);
  if (!IsUsableCapacity(capacity)) {
    return STRSAFE_E_INVALID_PARAMETER;
  }
  const ErrnoKeeper errnoKeeper;
  std::va_list values;
  va_start(values, format);
  const FormattedText text(format, values);
  va_end(values);
  return CopyWidened(buffer, capacity, text);
}

HRESULT BoundedCopy(char* buffer, std::size_t capacity, const char* text) {
  return Copy(buffer, capacity, text);
}

HRESULT BoundedCopy(wchar_t* buffer, std::size_t capacity, const wchar_t* text) {
  return Copy(buffer, capacity, text);
}

HRESULT BoundedAppend(char* buffer, std::size_t capacity, const char* text) {
  return Append(buffer, capacity, text);
}

HRESULT BoundedAppend(wchar_t* buffer, std::size_t capacity, const wchar_t* text) {
  return Append(buffer, capacity, text);
}

HRESULT BoundedLength(const char* text, std::size_t capacity, std::size_t* length) {
  return Length(text, capacity, length);
}

HRESULT BoundedLength(const wchar_t* text, std::size_t capacity, std::size_t* length) {
  return Length(text, capacity, length);
}

} // namespace korvex
