#include "app/records/file_helpers.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/records/record_directory.h"
#include "platform/error.h"

namespace korvex {

RecordFile::~RecordFile() {
  if (IsOpen()) {
    CloseHandle(m_handle);
  }
}

bool vrx_OpenFile(const char* name, RecordFile& file) {
  if (IsInWwnDirectory(name)) {
    file.m_handle =
        CreateFileA(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  if (!file.IsOpen()) {
    PrintError("vrx_OpenFile: Error opening file %s. error - %s\n", name, LastErrorText().c_str());
    return false;
  }
  return true;
}

int vrx_CloseFile(RecordFile& file) {
  if (FlushFileBuffers(file.m_handle) == FALSE) {
    PrintError("vrx_CloseFile: Error flushing file buffers. error - %s\n", LastErrorText().c_str());
    return -1;
  }
  const BOOL isClosed = CloseHandle(file.m_handle);
  file.m_handle = INVALID_HANDLE_VALUE;
  if (isClosed == FALSE) {
    PrintError("vrx_CloseFile: Error closing file. error - %s\n", LastErrorText().c_str());
    return -1;
  }
  return 0;
}

std::int64_t vrx_ReadFile(const RecordFile& file, void* buffer, std::uint32_t count) {
  DWORD bytesRead = 0;
  if (ReadFile(file.Handle(), buffer, count, &bytesRead, nullptr) == FALSE) {
    PrintError("vrx_ReadFile: Error reading file. error - %s\n", LastErrorText().c_str());
    return -1;
  }
  return static_cast<std::int64_t>(bytesRead);
}

std::int64_t vrx_WriteFile(const RecordFile& file, const void* buffer, std::uint32_t count) {
  DWORD bytesWritten = 0;
  if (WriteFile(file.Handle(), buffer, count, &bytesWritten, nullptr) == FALSE) {
    PrintError("vrx_WriteFile: Error writing file. error - %s\n", LastErrorText().c_str());
    return -1;
  }
  return static_cast<std::int64_t>(bytesWritten);
}

std::uint32_t vrx_SetFilePointer(const RecordFile& file, std::int32_t offset, std::uint32_t origin) {
  static constexpr DWORD kFailed = 0xFFFFFFFF;
  if (origin > FILE_END) {
    SetLastError(ERROR_INVALID_PARAMETER);
  }
  const DWORD position =
      origin > FILE_END ? kFailed : SetFilePointer(file.Handle(), static_cast<LONG>(offset), nullptr, origin);
  if (position == kFailed) {
    PrintError("vrx_SetFilePointer: Error setting file pointer. error - %s\n", LastErrorText().c_str());
  }
  return static_cast<std::uint32_t>(position);
}

} // namespace korvex
