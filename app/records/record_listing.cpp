#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/records/file_search.h"
#include "app/records/record_directory.h"
#include "platform/allocation.h"

#include <algorithm>
#include <cstring>

namespace korvex {

bool WwnFileList::Allocate(std::uint32_t room) {
  Release();
  m_entries =
      static_cast<WwnFileEntry*>(platform::AllocateStore("WWN_FILES", std::uint64_t{room} * sizeof(WwnFileEntry)));
  return m_entries != nullptr;
}

void WwnFileList::Release() {
  platform::FreeStore(m_entries);
  m_entries = nullptr;
  numWwnFiles = 0;
}

void WwnFileList::MarkSeen(const char* name) {
  const auto entry = std::ranges::find_if(
      Entries(), [name](const WwnFileEntry& candidate) { return std::strcmp(candidate.name, name) == 0; });
  if (entry != Entries().end()) {
    entry->isSeen = 1;
  }
}

namespace {

/// The pattern of all record files; false after a message.
bool FormPattern(char (&pattern)[VRX_MAX_PATH]) {
  if (BoundedCopy(pattern, sizeof pattern, gWwnDirPath) != S_OK) {
    PrintError("utilPrintWWNList: StringCchCopy failed\n");
    PrintError("utilPrintWWNList: StringCchCopy due to STRSAFE_E_INSUFFICIENT_BUFFER\n");
    return false;
  }
  if (BoundedAppend(pattern, sizeof pattern, "*.wwn") != S_OK) {
    PrintError("utilPrintWWNList: Error creating WWN wild card name. error - %s\n", LastErrorText().c_str());
    return false;
  }
  return true;
}

/// How many record files there are; 0 also after a message.
std::uint32_t getWwnFileCount(const char* pattern) {
  FileSearch search(pattern);
  std::uint32_t count = 0;
  while (search.HasFile()) {
    ++count;
    search.Next();
  }
  const bool isRegularEnd =
      search.EndCode() == ERROR_FILE_NOT_FOUND || (count > 0 && search.EndCode() == ERROR_NO_MORE_FILES);
  if (!isRegularEnd) {
    PrintError("getWwnFileCount: %s\n", LastErrorText().c_str());
    return 0;
  }
  return count;
}

void StoreName(const char* name, WwnFileEntry& entry) {
  if (BoundedCopy(entry.name, sizeof entry.name, name) != S_OK) {
    PrintError("utilPrintWWNList: StringCchCopy failed\n");
    PrintError("utilPrintWWNList: StringCchCopy-2 due to STRSAFE_E_INSUFFICIENT_BUFFER\n");
  }
}

} // namespace

int utilPrintWWNList(WwnFileList& list) {
  list.Release();
  char pattern[VRX_MAX_PATH];
  if (vrxUtilSys_SetWwnDirPath() == nullptr || !FormPattern(pattern)) {
    return 0;
  }
  const std::uint32_t count = getWwnFileCount(pattern);
  if (!list.Allocate(count + 1)) {
    PrintError("Unable to malloc memory for WWN_FILES - %s!\n", RuntimeErrorText());
    return 0;
  }
  if (count == 0) {
    return 1;
  }
  FileSearch search(pattern);
  if (!search.HasFile() && search.EndCode() != ERROR_FILE_NOT_FOUND) {
    PrintError("   %s\n", LastErrorText().c_str());
  }
  while (search.HasFile() && list.numWwnFiles < count + 1) {
    StoreName(search.Name(), list.m_entries[list.numWwnFiles]);
    ++list.numWwnFiles;
    search.Next();
  }
  if (list.numWwnFiles != count) {
    PrintError("utilPrintWWNList: file count mismatch\n");
  }
  return 1;
}

} // namespace korvex
