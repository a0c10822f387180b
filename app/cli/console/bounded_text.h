#pragma once

#include "platform/types.h"

#include <cstddef>

// Text operations on buffers of a fixed capacity: a text that does not fit is cut and always terminated. Each gives
// S_OK, STRSAFE_E_INSUFFICIENT_BUFFER when it was cut, or STRSAFE_E_INVALID_PARAMETER for a capacity of 0 or above
// 2147483647 (then nothing is written). Texts are never none, but for BoundedLength. A text that cannot be formatted
// counts as cut to nothing.

namespace korvex {

HRESULT BoundedFormat(char* buffer, std::size_t capacity, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/// `capacityBytes` is divided by the width of a wide character. The format is narrow and its result is converted from
/// the ANSI code page, as wide formats differ between the runtime libraries.
HRESULT BoundedWideFormat(wchar_t* buffer, std::size_t capacityBytes, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

HRESULT BoundedCopy(char* buffer, std::size_t capacity, const char* text);
HRESULT BoundedCopy(wchar_t* buffer, std::size_t capacity, const wchar_t* text);
HRESULT BoundedAppend(char* buffer, std::size_t capacity, const char* text);
HRESULT BoundedAppend(wchar_t* buffer, std::size_t capacity, const wchar_t* text);
/// The length of `text` when its terminator stands within `capacity` characters; otherwise the invalid-parameter result
/// and 0.
HRESULT BoundedLength(const char* text, std::size_t capacity, std::size_t* length);
HRESULT BoundedLength(const wchar_t* text, std::size_t capacity, std::size_t* length);

} // namespace korvex
