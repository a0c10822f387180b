#include "platform/text.h"

#include "platform/error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <cwchar>

namespace {

constexpr UINT kWesternCodePage = 1252;

/// What the bytes 0x80 to 0x9F of code page 1252 stand for; every other byte stands for the character of its own
/// number. The five bytes that the code page does not define stand for control characters.
constexpr std::array<char32_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
constexpr char32_t kFirstUpperControl = 0x80;

constexpr bool IsUpperControl(char32_t value) {
  return value >= kFirstUpperControl && value < kFirstUpperControl + kUpperControls.size();
}

WCHAR WideOf(char narrow) {
  const auto byte = static_cast<std::uint8_t>(narrow);
  return static_cast<WCHAR>(IsUpperControl(byte) ? kUpperControls[byte - kFirstUpperControl] : byte);
}

/// The byte of a UTF-16 unit into `narrow`; false when it has none.
bool NarrowOf(WCHAR wide, char& narrow) {
  const auto unit = static_cast<char32_t>(wide);
  if (unit < 0x100 && !IsUpperControl(unit)) {
    narrow = static_cast<char>(unit);
    return true;
  }
  const auto* const found = std::find(kUpperControls.begin(), kUpperControls.end(), unit);
  if (found == kUpperControls.end()) {
    return false;
  }
  narrow = static_cast<char>(kFirstUpperControl + static_cast<char32_t>(found - kUpperControls.begin()));
  return true;
}

int Fail(DWORD code) {
  SetLastError(code);
  return 0;
}

/// What both directions refuse, as the last error's code; 0 for good arguments.
DWORD CheckArguments(UINT codePage, DWORD flags, const void* source, int sourceLength, const void* target,
                     int capacity) {
  if (source == nullptr || sourceLength == 0 || capacity < 0 || (target == nullptr && capacity != 0) ||
      (target == source && capacity != 0) || (codePage != CP_ACP && codePage != kWesternCodePage)) {
    return ERROR_INVALID_PARAMETER;
  }
  return flags == 0 ? ERROR_SUCCESS : ERROR_INVALID_FLAGS;
}

} // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wideCount) {
  if (const DWORD refused = CheckArguments(codePage, flags, text, bytes, wide, wideCount); refused != ERROR_SUCCESS) {
    return Fail(refused);
  }
  const std::size_t length = bytes < 0 ? std::strlen(text) + 1 : static_cast<std::size_t>(bytes);
  if (wideCount == 0) {
    return static_cast<int>(length);
  }
  const std::size_t fitting = std::min(length, static_cast<std::size_t>(wideCount));
  std::transform(text, text + fitting, wide, WideOf);
  return fitting < length ? Fail(ERROR_INSUFFICIENT_BUFFER) : static_cast<int>(length);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideCount, LPSTR text, int bytes,
                        LPCSTR defaultChar, BOOL* usedDefault) {
  if (const DWORD refused = CheckArguments(codePage, flags, wide, wideCount, text, bytes); refused != ERROR_SUCCESS) {
    return Fail(refused);
  }
  const std::size_t length = wideCount < 0 ? std::wcslen(wide) + 1 : static_cast<std::size_t>(wideCount);
  const std::size_t fitting = bytes == 0 ? length : std::min(length, static_cast<std::size_t>(bytes));
  const char substitute = defaultChar == nullptr ? '?' : *defaultChar;
  bool substituted = false;
  for (std::size_t at = 0; at < fitting; ++at) {
    char narrow = substitute;
    substituted = !NarrowOf(wide[at], narrow) || substituted;
    if (bytes != 0) {
      text[at] = narrow;
    }
  }
  if (usedDefault != nullptr) {
    *usedDefault = substituted ? TRUE : FALSE;
  }
  return fitting < length ? Fail(ERROR_INSUFFICIENT_BUFFER) : static_cast<int>(length);
}

std::size_t platform::DefaultLocaleWcstombs(char* target, const wchar_t* text, std::size_t capacity) {
  std::size_t length = 0;
  while (target == nullptr || length < capacity) {
    const auto unit = static_cast<char32_t>(text[length]);
    if (unit > 0xFF) {
      errno = EILSEQ;
      return static_cast<std::size_t>(-1);
    }
    if (target != nullptr) {
      target[length] = static_cast<char>(unit);
    }
    if (unit == 0) {
      return length;
    }
    ++length;
  }
  return length;
}
