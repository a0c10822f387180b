#include "app/records/record_directory.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/inventory/limits.h"
#include "app/inventory/wwn_text.h"
#include "app/records/file_helpers.h"
#include "platform/error.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

namespace korvex {

char gWwnDirPath[VRX_MAX_PATH] = "";
char gWwnFileName[VRX_MAX_PATH] = "";

namespace {

constexpr char kFileSuffix[] = ".wwn";

/// The executable's path; false after a message.
bool ReadExecutablePath(char (&path)[VRX_MAX_PATH]) {
  const DWORD length = GetModuleFileNameA(nullptr, path, static_cast<DWORD>(sizeof path));
  if (length >= VRX_MAX_PATH) {
    PrintError("Error setting WWN directory path. dirPathLength >=  VRX_MAX_PATH\n");
    return false;
  }
  if (length == 0) {
    PrintError("Error setting WWN directory path.  error - %s\n", LastErrorText().c_str());
    return false;
  }
  return true;
}

/// Leaves what stands before the last backslash, which is not the first character.
void CutAtLastBackslash(char (&path)[VRX_MAX_PATH]) {
  char* last = std::strrchr(path, '\\');
  *(last == nullptr || last == path ? path : last) = '\0';
}

/// Whether the directory is there or could be made; false after a message.
bool EnsureDirectory(const char* path) {
  const RecordFile directory(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (directory.IsOpen()) {
    return true;
  }
  if (CreateDirectoryA(path, nullptr) == FALSE) {
    PrintError("WWN directory could not be created.  error - %s\n", LastErrorText().c_str());
    return false;
  }
  return true;
}

/// Upper-case hexadecimal letters become lower case; every other character stays.
char LowerHex(char character) {
  return character >= 'A' && character <= 'F' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Whether the system takes the file name for a device's, whatever its directory and its extension are.
bool NamesDevice(const char* fileName) {
  static constexpr std::string_view kDevices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
  static constexpr std::string_view kNumberedDevices[] = {"com", "lpt"};
  std::string stem(fileName, std::strcspn(fileName, "."));
  std::ranges::transform(stem, stem.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  stem.resize(stem.find_last_not_of(' ') + 1);
  return std::ranges::find(kDevices, stem) != std::end(kDevices) ||
         (stem.size() == 4 && stem[3] >= '0' && stem[3] <= '9' &&
          std::ranges::find(kNumberedDevices, stem.substr(0, 3)) != std::end(kNumberedDevices));
}

} // namespace

const char* vrxUtilSys_SetWwnDirPath() {
  if (gWwnDirPath[0] != '\0') {
    return gWwnDirPath;
  }
  char path[VRX_MAX_PATH];
  if (!ReadExecutablePath(path)) {
    return nullptr;
  }
  CutAtLastBackslash(path);
  BoundedCopy(gWwnDirPath, sizeof gWwnDirPath, path);
  BoundedAppend(gWwnDirPath, sizeof gWwnDirPath, "\\");
  BoundedAppend(gWwnDirPath, sizeof gWwnDirPath, "WWN_FILES");
  if (!EnsureDirectory(gWwnDirPath)) {
    // Half a path would put files beside the directory: the next call tries again.
    gWwnDirPath[0] = '\0';
    return nullptr;
  }
  BoundedAppend(gWwnDirPath, sizeof gWwnDirPath, "\\");
  return gWwnDirPath;
}

void FormWwnFileName() {
  if (InterfaceGeneration() == 2) {
    char wwn[33] = {};
    std::transform(gModuleWWN, gModuleWWN + 32, wwn,
                   [](std::uint8_t byte) { return LowerHex(static_cast<char>(byte)); });
    BoundedCopy(gWwnFileName, sizeof gWwnFileName, wwn);
  } else {
    WwnBytes wwn;
    std::copy_n(gModuleWWN, wwn.size(), wwn.begin());
    BoundedCopy(gWwnFileName, sizeof gWwnFileName, WwnText(wwn).c_str());
  }
  BoundedAppend(gWwnFileName, sizeof gWwnFileName, kFileSuffix);
}

bool FormFullPath(const char* fileName, char (&path)[VRX_MAX_PATH]) {
  return BoundedCopy(path, sizeof path, gWwnDirPath) == S_OK && BoundedAppend(path, sizeof path, fileName) == S_OK;
}

bool IsInWwnDirectory(const char* path) {
  const std::size_t length = std::strlen(gWwnDirPath);
  if (std::strncmp(path, gWwnDirPath, length) == 0 && std::strpbrk(path + length, "\\/:") == nullptr &&
      !NamesDevice(path + length)) {
    return true;
  }
  SetLastError(ERROR_INVALID_NAME);
  return false;
}

bool vrxUtilSys_DoesWwnDirPathFileExist() {
  char path[VRX_MAX_PATH];
  if (BoundedCopy(path, sizeof path, gWwnDirPath) != S_OK) {
    PrintError("vrxUtilSys_DoesWwnDirPathFileExist: Error creating WWN directory path. error - %s\n",
               LastErrorText().c_str());
    return false;
  }
  if (BoundedAppend(path, sizeof path, gWwnFileName) != S_OK) {
    PrintError("vrxUtilSys_DoesWwnDirPathFileExist: Error creating full file path. error - %s\n",
               LastErrorText().c_str());
    return false;
  }
  HANDLE file = INVALID_HANDLE_VALUE;
  if (IsInWwnDirectory(path)) {
    file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  if (file != INVALID_HANDLE_VALUE) {
    if (CloseHandle(file) == FALSE) {
      PrintError("vrxUtilSys_DoesWwnDirPathFileExist: Error closing file. error - %s\n", LastErrorText().c_str());
    }
    return true;
  }
  if (GetLastError() != ERROR_FILE_NOT_FOUND) {
    PrintError("vrxUtilSys_DoesWwnDirPathFileExist: Error opening file %s. error - %s\n", gWwnFileName,
               LastErrorText().c_str());
  }
  return false;
}

} // namespace korvex
