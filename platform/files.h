#pragma once

#include "platform/handles.h"
#include "platform/types.h"

#include <cstdio>

// Files and directories. Paths are in the ANSI code page and may use either slash.

namespace platform {

/// The standard library's fopen as Windows has it: none with errno set on failure, EACCES for a directory in any mode.
/// `path` is in the ANSI code page and may use either slash; `mode` is fopen's. Close with std::fclose.
std::FILE* OpenTextFile(const char* path, const char* mode) noexcept;

} // namespace platform

#ifndef _WIN32
inline constexpr DWORD MAX_PATH = 260;
inline constexpr DWORD FILE_SHARE_DELETE = 0x00000004;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x00000010;
inline constexpr DWORD FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;
inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;

/// Opens or makes a file: INVALID_HANDLE_VALUE with 2 for a missing file, 3 for a missing directory, 5 for a file that
/// may not be opened so, and for a directory without FILE_FLAG_BACKUP_SEMANTICS, 32 for one that is open in this
/// process without the sharing that this takes, or for what this does not share, 123 for a name that cannot be. Only
/// OPEN_EXISTING and OPEN_ALWAYS, which leaves the last error 183 for a file that was there and 0 for one that was
/// made. A directory is opened for reading at most.
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD sharing, void* security, DWORD disposition, DWORD attributes,
                   HANDLE model);

/// Reads from the file's position; `*bytesRead` is 0 at its end. Not overlapped.
BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, void* overlapped);

/// Writes at the file's position, all or as much as there is room for before it fails; a full disk gives 112.
BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* bytesWritten, void* overlapped);

/// Moves the file's position by `distance` from FILE_BEGIN, FILE_CURRENT or FILE_END; the new one, or
/// INVALID_SET_FILE_POINTER (131 for a position before the beginning). `*distanceHigh` is the upper half, if given.
DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method);

BOOL FlushFileBuffers(HANDLE file);

/// FALSE with 183 for a name that exists, 3 for a missing parent.
BOOL CreateDirectoryA(LPCSTR path, void* security);

/// FALSE with 2 for a missing file, 5 for a directory and a read-only file, 32 for one that is open without
/// FILE_SHARE_DELETE.
BOOL DeleteFileA(LPCSTR path);

struct WIN32_FIND_DATAA {
  DWORD dwFileAttributes;
  char cFileName[MAX_PATH]; ///< without directory
};

/// Begins a walk over the entries of a directory whose names match the pattern's last part (with `*` and `?`, ignoring
/// case), in ascending order of their names without regard to case: 2 for none, 3 for a missing directory, 267 for a
/// file in place of the directory. Close with FindClose.
HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* found);
/// FALSE with 18 behind the last entry.
BOOL FindNextFileA(HANDLE search, WIN32_FIND_DATAA* found);
BOOL FindClose(HANDLE search);

/// The running program's path with backslashes; `module` is none. The length, or `size` with the last error 122 when it
/// was cut to fit, or 0.
DWORD GetModuleFileNameA(void* module, LPSTR path, DWORD size);
#endif
