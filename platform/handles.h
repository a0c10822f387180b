#pragma once

#include "platform/types.h"

// Handles of files and devices, and how these are opened.

#ifndef _WIN32
using HANDLE = void*;
/// What the calls that open something give when they fail.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(std::intptr_t{-1}); // NOLINT

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 0x00000001;
inline constexpr DWORD FILE_SHARE_WRITE = 0x00000002;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;

/// Closes a handle of whatever kind; FALSE with ERROR_INVALID_HANDLE for one that is not open.
BOOL CloseHandle(HANDLE handle);
#endif
