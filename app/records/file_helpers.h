#pragma once

#include "platform/files.h"

#include <cstdint>

// Files as the records use them. Each prints its message with the system's text of the last error when it fails.

namespace korvex {

/// One open file, closed without a message at the end of its life unless vrx_CloseFile did.
class RecordFile {
public:
  RecordFile() = default;
  explicit RecordFile(HANDLE handle) : m_handle(handle) {}
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
  HANDLE Handle() const { return m_handle; }

private:
  friend bool vrx_OpenFile(const char* name, RecordFile& file);
  friend int vrx_CloseFile(RecordFile& file);

  HANDLE m_handle = INVALID_HANDLE_VALUE;
};

/// Opens a file for reading and writing, or makes it; false after a message.
bool vrx_OpenFile(const char* name, RecordFile& file);
/// Writes out what the system still holds and closes; 0, or -1 after a message (the file stays open when it could not
/// be written out).
int vrx_CloseFile(RecordFile& file);
/// Bytes read (0 at the end of the file), or -1 after a message.
std::int64_t vrx_ReadFile(const RecordFile& file, void* buffer, std::uint32_t count);
/// Bytes written, or -1 after a message.
std::int64_t vrx_WriteFile(const RecordFile& file, const void* buffer, std::uint32_t count);
/// The new position, or 0xFFFFFFFF after a message. `origin` is 0 (start), 1 (current) or 2 (end).
std::uint32_t vrx_SetFilePointer(const RecordFile& file, std::int32_t offset, std::uint32_t origin);

} // namespace korvex
