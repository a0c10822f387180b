#include "app/records/record_update.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/records/record_directory.h"
#include "app/records/record_reader.h"
#include "app/records/record_writer.h"
#include "app/records/status_merge.h"
#include "app/records/status_report.h"
#include "platform/error.h"

namespace korvex {

namespace {

/// False when a file with content is there after all, whose paths must not be lost: the check for it failed, or another
/// run has just made it. Nothing is written then.
bool MakeRecord(const char* path, const UtilStatusInfo& current) {
  RecordFile file;
  if (!vrx_OpenFile(path, file)) {
    return true;
  }
  if (GetLastError() == ERROR_ALREADY_EXISTS && vrx_SetFilePointer(file, 0, FILE_END) != 0) {
    return false;
  }
  if (utilWriteWWNFile(file, current)) {
    vrx_CloseFile(file);
    utilPrintArrayStatus(current);
  }
  return true;
}

/// Reads what has been recorded; false after a message.
bool ReadRecord(const char* path, UtilStatusInfo& stored) {
  RecordFile file;
  if (!vrx_OpenFile(path, file)) {
    return false;
  }
  if (!utilReadWWNFile(file, stored)) {
    PrintError("Unable to read Array File- %s!\n", RuntimeErrorText());
    return false;
  }
  vrx_CloseFile(file);
  return true;
}

void WriteRecord(const char* path, const UtilStatusInfo& stored) {
  RecordFile file;
  if (!vrx_OpenFile(path, file)) {
    return;
  }
  if (!utilWriteWWNFile(file, stored)) {
    PrintError("Unable to write Array File- %s!\n", RuntimeErrorText());
  }
  vrx_CloseFile(file);
}

} // namespace

bool UpdateRecord(UtilStatusInfo& current) {
  char path[VRX_MAX_PATH];
  FormFullPath(gWwnFileName, path);
  if (!vrxUtilSys_DoesWwnDirPathFileExist() && MakeRecord(path, current)) {
    return true;
  }
  UtilStatusInfo stored;
  if (!AllocateStatusInfo(stored, current.MaxLuns(), current.MaxPaths())) {
    return false;
  }
  if (ReadRecord(path, stored)) {
    utilMergeStatusInfo(current, stored);
    utilPrintArrayStatus(stored);
    WriteRecord(path, stored);
  }
  return true;
}

} // namespace korvex
