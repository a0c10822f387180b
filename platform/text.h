#pragma once

#include "platform/types.h"

#include <cstddef>

// Conversion between narrow text in the ANSI code page and wide text.

#ifndef _WIN32
inline constexpr UINT CP_ACP = 0;

/// ANSI code page (1252) to UTF-16 units, as documented: `bytes` -1 takes the text with its terminator; a `wideCount`
/// of 0 only measures; gives the units written, or 0 with the last error 122 (buffer too small) or 87 (bad argument).
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wideCount);

/// UTF-16 units to the ANSI code page (1252); a unit without a byte becomes '?' (or `*defaultChar`) and sets
/// `*usedDefault`, where Windows may find a similar character instead. `wideCount` -1 takes the text with its
/// terminator; `bytes` 0 only measures; results as MultiByteToWideChar's.
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideCount, LPSTR text, int bytes,
                        LPCSTR defaultChar, BOOL* usedDefault);
#endif

namespace platform {

/// The standard library's wcstombs in the default locale as Windows has it: one byte for each character up to U+00FF,
/// failure above. Writes at most `capacity` bytes, the terminator included when it fits; with no `target` it only
/// measures. Gives the bytes of the text without its terminator, or -1 (as std::size_t) when a character has no byte;
/// nothing can be said of the target then.
std::size_t DefaultLocaleWcstombs(char* target, const wchar_t* text, std::size_t capacity);

} // namespace platform
