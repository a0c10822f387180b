#pragma once

// The operating system's basic types: the SDK's on Windows, the subset in use with the documented widths elsewhere.

#ifdef _WIN32
#include <windows.h>
// Behind windows.h; only its result codes are used, and the runtime library's functions keep their names.
#define STRSAFE_NO_DEPRECATE
#include <strsafe.h>
#else
#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using DWORDLONG = std::uint64_t;
using USHORT = std::uint16_t;
using SHORT = std::int16_t;
using BOOL = int;
using HRESULT = std::int32_t;
using LCID = std::uint32_t;
using PVOID = void*;
/// One UTF-16 unit per wide character, also where the compiler's wide character is 32 bits wide.
using WCHAR = wchar_t;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPSTR = char*;
using LPCSTR = const char*;

#define WINAPI
#define STDMETHODCALLTYPE

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001U);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003U);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005U);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFU);
inline constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005U);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EU);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057U);
/// Results of the bounded text functions.
inline constexpr HRESULT STRSAFE_E_INSUFFICIENT_BUFFER = static_cast<HRESULT>(0x8007007AU);
inline constexpr HRESULT STRSAFE_E_INVALID_PARAMETER = static_cast<HRESULT>(0x80070057U);

constexpr bool SUCCEEDED(HRESULT result) {
  return result >= 0;
}
constexpr bool FAILED(HRESULT result) {
  return result < 0;
}
#endif
