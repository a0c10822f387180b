#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/records/file_helpers.h"
#include "app/records/file_search.h"
#include "app/records/record_deletion.h"
#include "app/records/record_directory.h"
#include "wmi/trace_text.h"

namespace korvex {

namespace {

/// Whether the record directory can be opened.
bool OpensDirectory() {
  const RecordFile directory(CreateFileA(gWwnDirPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  return directory.IsOpen();
}

/// The pattern of all record files; false after a message.
bool FormPattern(char (&pattern)[VRX_MAX_PATH]) {
  if (BoundedCopy(pattern, sizeof pattern, gWwnDirPath) != S_OK) {
    PrintError("utilDeleteWWNList: StringCchCopy failed\n");
    PrintError("utilDeleteWWNList: StringCchCopy due to STRSAFE_E_INSUFFICIENT_BUFFER\n");
    return false;
  }
  if (BoundedAppend(pattern, sizeof pattern, "*.wwn") != S_OK) {
    PrintError("utilDeleteWWNList: Error creating WWN wild card name. error - %s\n", LastErrorText().c_str());
    return false;
  }
  return true;
}

/// The path of one file to delete; false after a message.
bool FormPath(const char* name, char (&path)[VRX_MAX_PATH]) {
  if (BoundedCopy(path, sizeof path, gWwnDirPath) != S_OK) {
    PrintError("utilDeleteWWNList: StringCchCopy failed for fileToDelete\n");
    PrintError("utilDeleteWWNList: StringCchCopy (fileToDelete) failed due to STRSAFE_E_INSUFFICIENT_BUFFER\n");
    return false;
  }
  if (BoundedAppend(path, sizeof path, name) != S_OK) {
    PrintError("utilDeleteWWNList: Error creating file to delete. error - %s\n", LastErrorText().c_str());
    return false;
  }
  return true;
}

/// Tells that there was nothing to delete, or what ended the walk too early.
void TellEnd(DWORD endCode, bool isAnyFound) {
  if (endCode == ERROR_FILE_NOT_FOUND) {
    if (!isAnyFound) {
      Print(" No files found to delete.\n");
    }
  } else if (!isAnyFound || endCode != ERROR_NO_MORE_FILES) {
    PrintError("%s\n", NarrowText(SystemErrorText(endCode)).c_str());
  }
}

} // namespace

int utilDeleteWWNList() {
  if (vrxUtilSys_SetWwnDirPath() == nullptr) {
    return 0;
  }
  if (!OpensDirectory()) {
    PrintError("utilDeleteWWNList: Error opening WWN directory.\n");
    return 0;
  }
  char pattern[VRX_MAX_PATH];
  if (!FormPattern(pattern)) {
    return 0;
  }
  // One walk: a file that cannot be deleted is told of once and left.
  bool isAnyFound = false;
  FileSearch search(pattern);
  for (; search.HasFile(); search.Next()) {
    char path[VRX_MAX_PATH];
    if (!FormPath(search.Name(), path)) {
      return 0;
    }
    isAnyFound = true;
    PrintError("Deleting file:  %s\n", search.Name());
    if (DeleteFileA(path) == FALSE) {
      PrintError("\n %s\n", LastErrorText().c_str());
    }
  }
  TellEnd(search.EndCode(), isAnyFound);
  return 1;
}

} // namespace korvex
