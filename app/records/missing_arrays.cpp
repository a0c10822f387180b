#include "app/records/missing_arrays.h"

#include "app/cli/console/print.h"
#include "app/records/file_helpers.h"
#include "app/records/record_text.h"

#include <cstring>

namespace korvex {

namespace {

/// Whether a name was printed.
bool PrintStoredName(const WwnFileEntry& entry) {
  char path[VRX_MAX_PATH];
  FormFullPath(entry.name, path);
  RecordFile file;
  char line[kFirstLineLength];
  if (!vrx_OpenFile(path, file) || vrx_ReadFile(file, line, sizeof line) != static_cast<std::int64_t>(sizeof line)) {
    return false;
  }
  char name[kStoredNameLength + 1] = {};
  std::memcpy(name, line + kNameColumn, kStoredNameLength);
  Print("  %s\n", name);
  return true;
}

} // namespace

void PrintMissingArrays(const WwnFileList& records) {
  Print("\nMissing Arrays:\n");
  bool isAnyPrinted = false;
  for (const WwnFileEntry& entry : records.Entries()) {
    if (entry.isSeen != 0) {
      continue;
    }
    const char* directory = vrxUtilSys_SetWwnDirPath();
    if (directory == nullptr || directory[0] == '\0') {
      PrintError("No WWN DIR PATH defined !\n");
      continue;
    }
    isAnyPrinted = PrintStoredName(entry) || isAnyPrinted;
  }
  if (!isAnyPrinted) {
    Print(" There are no missing arrays\n");
  }
}

} // namespace korvex
