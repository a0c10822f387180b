#include "app/channel/dsm_name.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "platform/files.h"
#include "wmi/trace_text.h"

#include <cstdio>

namespace korvex {
namespace {

constexpr char kDsmNameFile[] = "dsmname.txt";
/// The file's name is exactly this long; what follows in the file is not looked at.
constexpr std::size_t kStoredNameLength = 8;

/// Independent of the locale, so that a name gives the same class names on every host.
char UpperCase(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

/// Takes the name from the opened file.
bool ReadStoredName(std::FILE* file, char (&name)[kDsmNameSize]) {
  char stored[kStoredNameLength + 1] = {};
  const std::size_t bytesRead = std::fread(stored, 1, kStoredNameLength, file);
  // An empty word after a first -D sets the flag without naming a DSM: the file then counts at any length.
  if (bytesRead < kStoredNameLength && !gCommandLineDsm.isSet) {
    PrintError("file read error \n");
    return false;
  }
  BoundedCopy(name, sizeof name, stored);
  return true;
}

} // namespace

bool ChooseDsmName(char (&name)[kDsmNameSize]) {
  if (gCommandLineDsm.isSet && gCommandLineDsm.name[0] != '\0') {
    BoundedCopy(name, sizeof name, gCommandLineDsm.name);
    return true;
  }
  // Binary, so that the eight bytes are the file's on every system.
  std::FILE* file = platform::OpenTextFile(kDsmNameFile, "rb");
  if (file == nullptr) {
    BoundedCopy(name, sizeof name, NarrowText(kDefaultDsmName).c_str());
    return true;
  }
  const bool isRead = ReadStoredName(file, name);
  std::fclose(file);
  return isRead;
}

void RememberDsmName(const char* name) {
  std::FILE* file = platform::OpenTextFile(kDsmNameFile, "w+");
  if (file != nullptr) {
    std::fputs(name, file);
    std::fclose(file);
  }
}

void SetRequestedDsm(const char* name) {
  BoundedCopy(gRequestedDsm, sizeof gRequestedDsm, name);
  for (char& character : gRequestedDsm) {
    character = UpperCase(character);
  }
}

void FormMofClassName() {
  BoundedWideFormat(gDsmMOFClassName, sizeof gDsmMOFClassName, "%s_MOF", gRequestedDsm);
}

void FormMethodsClassName() {
  if (InterfaceGeneration() == 2) {
    BoundedWideFormat(gWmiMethodsName, sizeof gWmiMethodsName, "%s_WMI_METHODS_V2", gRequestedDsm);
  } else {
    BoundedWideFormat(gWmiMethodsName, sizeof gWmiMethodsName, "%s_WMI_METHODS", gRequestedDsm);
  }
}

bool EqualIgnoringCase(const char* left, const char* right) {
  while (*left != '\0' && UpperCase(*left) == UpperCase(*right)) {
    ++left;
    ++right;
  }
  return UpperCase(*left) == UpperCase(*right);
}

} // namespace korvex
