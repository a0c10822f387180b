#pragma once

#include "platform/error.h"
#include "platform/host.h"
#include "platform/types.h"

#include <cstdint>

// The registry. Each call gives its result code and leaves the last error alone.

#ifndef _WIN32
/// An open key, or one of the predefined keys.
using HKEY = struct RegistryHandle*;
using PHKEY = HKEY*;
using REGSAM = DWORD;
using LSTATUS = LONG;
struct SECURITY_ATTRIBUTES;

// NOLINTNEXTLINE(performance-no-int-to-ptr)
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(static_cast<std::intptr_t>(-0x7FFFFFFE));

inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;
/// The right to delete a key.
inline constexpr REGSAM DELETE = 0x00010000;

inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
inline constexpr DWORD REG_LINK = 6;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

// Names are matched ignoring case and kept as written. An invalid or closed handle gives ERROR_INVALID_HANDLE, a handle
// without the right for the call ERROR_ACCESS_DENIED, a key that was deleted while it was open ERROR_KEY_DELETED, a
// wrong argument ERROR_INVALID_PARAMETER.

/// Opens the key that `path` (components separated by backslashes; none or empty for `key` itself) names below `key`:
/// ERROR_FILE_NOT_FOUND when there is none, ERROR_ACCESS_DENIED when it does not grant the rights of `desired`.
/// `options` is 0.
LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM desired, PHKEY opened);

/// The same, making what is not there yet. `reserved` and `options` are 0, `keyClass` and `security` none;
/// `disposition` (none: not told) becomes REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY.
LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM desired,
                        SECURITY_ATTRIBUTES* security, PHKEY opened, DWORD* disposition);

/// Closes a key; a second time gives ERROR_INVALID_HANDLE. A predefined key stays open.
LSTATUS RegCloseKey(HKEY key);

/// How many subkeys and values the key has, and their longest names (wide characters without terminator) and data
/// (bytes); what is not asked for is none. No class, security descriptor or write time is told: the class is empty,
/// the others are 0.
LSTATUS RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, DWORD* classLength, DWORD* reserved, DWORD* subkeys,
                         DWORD* longestSubkey, DWORD* longestClass, DWORD* values, DWORD* longestValueName,
                         DWORD* longestData, DWORD* securityBytes, FILETIME* lastWrite);

/// The name of the subkey at a place of the ascending order of names (letters as capitals). `*length` is the room in
/// wide characters, the terminator included, and becomes the length without it. ERROR_NO_MORE_ITEMS behind the last,
/// ERROR_MORE_DATA when the name does not fit (name and length stay as they were).
LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* length, DWORD* reserved, LPWSTR keyClass,
                      DWORD* classLength, FILETIME* lastWrite);

/// The type and the data of a value (none or empty: the key's default value); texts are UTF-16, lower byte first.
/// `*bytes` is the room of `data` and becomes what the data need: ERROR_MORE_DATA when they do not fit.
LSTATUS RegQueryValueExW(HKEY key, LPCWSTR valueName, DWORD* reserved, DWORD* type, BYTE* data, DWORD* bytes);

/// Stores `bytes` bytes as a value.
LSTATUS RegSetValueExW(HKEY key, LPCWSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes);

/// Deletes the key that `path` names below `key`; one with subkeys gives ERROR_ACCESS_DENIED.
LSTATUS RegDeleteKeyW(HKEY key, LPCWSTR path);
#endif
