#pragma once

#include "platform/types.h"

#include <cstddef>

// Copies of wide texts that the layer keeps.

namespace korvex {

/// The characters of a text without its terminator. STRSAFE_E_INVALID_PARAMETER for no text or one of more than
/// 2147483647 characters.
HRESULT MeasureWideText(const wchar_t* text, std::size_t& length);

/// A zero-filled store for a text of `length` characters and its terminator (platform::FreeStore); none when it cannot
/// be allocated.
wchar_t* AllocateWideText(const char* storeName, std::size_t length);

/// Copies a text with its terminator into `capacity` characters. STRSAFE_E_INSUFFICIENT_BUFFER for a text that does not
/// fit.
HRESULT CopyWideText(wchar_t* target, std::size_t capacity, const wchar_t* text);

} // namespace korvex
