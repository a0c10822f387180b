#pragma once

#include "platform/error.h"
#include "platform/files.h"

namespace korvex {

/// One walk over the files that match a pattern, from the first on.
class FileSearch {
public:
  explicit FileSearch(const char* pattern) : m_search(FindFirstFileA(pattern, &m_found)) {
    m_hasFile = m_search != INVALID_HANDLE_VALUE;
    NoteEnd();
  }
  ~FileSearch() {
    if (m_search != INVALID_HANDLE_VALUE) {
      FindClose(m_search);
    }
  }
  FileSearch(const FileSearch&) = delete;
  FileSearch& operator=(const FileSearch&) = delete;

  /// Whether the walk stands on a file; its name then.
  bool HasFile() const { return m_hasFile; }
  const char* Name() const { return m_found.cFileName; }
  void Next() {
    m_hasFile = FindNextFileA(m_search, &m_found) != FALSE;
    NoteEnd();
  }
  /// The last error that ended the walk.
  DWORD EndCode() const { return m_endCode; }

private:
  void NoteEnd() {
    if (!m_hasFile) {
      m_endCode = GetLastError();
    }
  }

  WIN32_FIND_DATAA m_found = {};
  HANDLE m_search;
  bool m_hasFile = false;
  DWORD m_endCode = ERROR_SUCCESS;
};

} // namespace korvex
