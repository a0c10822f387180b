#include "app/records/record_deletion.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/limits.h"
#include "app/records/array_reading.h"
#include "app/records/file_helpers.h"
#include "app/records/record_text.h"
#include "platform/error.h"

#include <cstring>
#include <set>
#include <string>

namespace korvex {

namespace {

/// Bytes of a record's first line that its name is taken from.
constexpr std::size_t kNameBytes = 34;

/// The name in a record's first line, without the blanks, control characters and bytes above 0x7F at its end.
std::string StoredName(const char* line) {
  std::size_t length = kNameBytes;
  while (length > 1 && static_cast<signed char>(line[kNameColumn + length - 1]) <= 32) {
    --length;
  }
  return {line + kNameColumn, length};
}

/// Whether the word is the name stored in the file; false also after a message.
bool HoldsName(const char* path, const char* word) {
  RecordFile file;
  char line[kFirstLineLength];
  return vrx_OpenFile(path, file) && vrx_ReadFile(file, line, sizeof line) == static_cast<std::int64_t>(sizeof line) &&
         StoredName(line) == word;
}

/// The full path of a file in the list; false after a message when it does not fit: cut, it would be another's.
bool FormPath(const WwnFileEntry& entry, char (&path)[VRX_MAX_PATH]) {
  if (FormFullPath(entry.name, path)) {
    return true;
  }
  SetLastError(ERROR_INVALID_NAME);
  PrintError("utilDeleteWWNList: Error creating file to delete. error - %s\n", LastErrorText().c_str());
  return false;
}

/// Deletes the files of arrays not seen. A stored name that is "missing" is taken by its word as well.
void DeleteFilesOfMissing(const WwnFileList& records) {
  bool isAnyMissing = false;
  for (const WwnFileEntry& entry : records.Entries()) {
    char path[VRX_MAX_PATH];
    if (!FormPath(entry, path)) {
      continue;
    }
    if (entry.isSeen == 0) {
      isAnyMissing = true;
      utilDeleteWWNFile(path);
    } else if (HoldsName(path, gOptionArgument)) {
      utilDeleteWWNFile(path);
    }
  }
  if (!isAnyMissing) {
    Print("\n There are no missing array files to delete.\n");
  }
}

void DeleteFilesByName(const WwnFileList& records) {
  bool isAnyDeleted = false;
  for (const WwnFileEntry& entry : records.Entries()) {
    char path[VRX_MAX_PATH];
    if (FormPath(entry, path) && HoldsName(path, gOptionArgument) && utilDeleteWWNFile(path) == 0) {
      isAnyDeleted = true;
    }
  }
  if (!isAnyDeleted) {
    Print("\n File for %s was not found or could not be deleted.\n", gOptionArgument);
  }
}

/// Marks the file of the array with this index; false when there is none, or when its WWN is not told.
bool MarkArray(std::uint32_t index, WwnFileList& records) {
  if (!ReadArrayByIndex(index)) {
    TracePrint("No Array found !\n");
  }
  if (!IsArrayNamed()) {
    return false;
  }
  FormWwnFileName();
  records.MarkSeen(gWwnFileName);
  return true;
}

/// Generation 2, whose DSM says how many arrays there are; false when not as many have told their WWNs, each its own.
bool MarkArrays(WwnFileList& records) {
  std::set<std::string> found;
  for (std::uint64_t place = 0; place < IndexesFor(MaxArrayModules) && found.size() < MaxArrayModules; ++place) {
    if (MarkArray(static_cast<std::uint32_t>(place), records) && IsWwnTextWhole()) {
      found.insert(gWwnFileName);
    }
  }
  return found.size() == MaxArrayModules;
}

/// Generation 1, whose DSM says how many modules there may be; false when there is one that cannot be read.
bool MarkModules(WwnFileList& records) {
  bool areAllRead = true;
  for (std::uint32_t index = 0; index < MaxArrayModules; ++index) {
    const bool isMarked = MarkArray(index, records);
    areAllRead = areAllRead && (gTargetIsAbsent || (isMarked && gTargetIsNamed));
  }
  return areAllRead;
}

/// 1, or the result of the set-up after a trace line.
int SetUpModuleArrays() {
  if (gModuleName != nullptr && gModuleWWN != nullptr) {
    return 1;
  }
  const int made = InitModuleArrays();
  if (made != 1) {
    TracePrint("failure in initialization of Module Array.\n");
  }
  return made;
}

} // namespace

int utilDeleteWWNFile(const char* fullPath) {
  char path[VRX_MAX_PATH + 1];
  char name[37];
  const char* lastBackslash = std::strrchr(fullPath, '\\');
  const HRESULT pathCopied = BoundedCopy(path, sizeof path, fullPath);
  if (BoundedCopy(name, sizeof name, lastBackslash == nullptr ? fullPath : lastBackslash + 1) != S_OK ||
      pathCopied != S_OK) {
    PrintError("utilDeleteWWNList: StringCchCopy failed\n");
    PrintError("utilDeleteWWNList: StringCchCopy due to STRSAFE_E_INSUFFICIENT_BUFFER\n");
  }
  Print("\nDeleting file:  %s\n", name);
  if (DeleteFileA(path) == FALSE) {
    PrintError("\n %s\n", LastErrorText().c_str());
    return -1;
  }
  return 0;
}

bool utilMarkPresentArrays(WwnFileList& records) {
  if (GetMaxArrayModules() != 1 || !IsArrayCountTold()) {
    PrintError("Unable to determine number of connected arrays!!\n");
    return false;
  }
  if (!(InterfaceGeneration() == 2 ? MarkArrays(records) : MarkModules(records))) {
    PrintError("Unable to read all connected arrays!!\n");
    return false;
  }
  return true;
}

int utilDeleteMissingWWNFiles() {
  const char* directory = vrxUtilSys_SetWwnDirPath();
  if (directory == nullptr || directory[0] == '\0') {
    PrintError("Error processing WWN file directory.\n");
    return 0;
  }
  WwnFileList records;
  if (utilPrintWWNList(records) != 1) {
    PrintError("Error processing WWN file data.\n");
    return 0;
  }
  TracePrint("vrxUtilSys_PrintWWNList wwnFileData numWwnFiles %d\n", static_cast<int>(records.numWwnFiles));
  if (std::strcmp(gOptionArgument, "missing") != 0) {
    DeleteFilesByName(records);
    return 1;
  }
  const int made = SetUpModuleArrays();
  if (made != 1) {
    return made;
  }
  if (!utilMarkPresentArrays(records)) {
    return 0;
  }
  DeleteFilesOfMissing(records);
  return 1;
}

} // namespace korvex
