#pragma once

#include "simhost/description.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

// The operations of the machine that can be counted and made to fail, by the names that the description and the audit
// use.

namespace simhost {

/// What the code of a failed operation is, and so which words may stand for it.
enum class CodeFamily : std::uint8_t {
  kWmi,           ///< a method of a WMI interface: a WBEM_ code
  kCom,           ///< a COM function or method: an HRESULT
  kWin32,         ///< a function that sets the last error or gives a system error code
  kConfiguration, ///< a CM_ function: a CR_ code
  kRuntime,       ///< a function of the runtime library: an errno value
  kAllocation,    ///< gives nothing, whatever the code
};

struct OperationName {
  std::string_view name;
  CodeFamily family;
  bool handsOut = false;  ///< gives its caller something, which a fault can leave out
  bool transfers = false; ///< transfers bytes, which a fault can cut short
};

/// Every operation, in the order in which the audit lists them.
inline constexpr OperationName kOperations[] = {
    {"ConnectServer", CodeFamily::kWmi, true},
    {"GetObject", CodeFamily::kWmi, true},
    {"CreateInstanceEnum", CodeFamily::kWmi, true},
    {"ExecQuery", CodeFamily::kWmi, true},
    {"ExecMethod", CodeFamily::kWmi, true},
    {"PutInstance", CodeFamily::kWmi},
    {"Next", CodeFamily::kWmi, true},
    {"Reset", CodeFamily::kWmi},
    {"Clone", CodeFamily::kWmi, true},
    {"Skip", CodeFamily::kWmi},
    {"Get", CodeFamily::kWmi, true},
    {"Put", CodeFamily::kWmi},
    {"SpawnInstance", CodeFamily::kWmi, true},
    {"GetMethod", CodeFamily::kWmi, true},
    {"BeginEnumeration", CodeFamily::kWmi},
    {"NextProperty", CodeFamily::kWmi, true},
    {"EndEnumeration", CodeFamily::kWmi},
    {"BeginMethodEnumeration", CodeFamily::kWmi},
    {"NextMethod", CodeFamily::kWmi, true},
    {"EndMethodEnumeration", CodeFamily::kWmi},
    {"QueryInterface", CodeFamily::kCom},
    {"QueryBlanket", CodeFamily::kCom},
    {"SetBlanket", CodeFamily::kCom},
    {"CoInitializeEx", CodeFamily::kCom},
    {"CoInitializeSecurity", CodeFamily::kCom},
    {"CoCreateInstance", CodeFamily::kCom},
    {"CoSetProxyBlanket", CodeFamily::kCom},
    {"VariantCopy", CodeFamily::kCom},
    {"SafeArrayGetLBound", CodeFamily::kCom},
    {"SafeArrayGetUBound", CodeFamily::kCom},
    {"SafeArrayAccessData", CodeFamily::kCom},
    {"SafeArrayCreate", CodeFamily::kAllocation},
    {"SysAllocString", CodeFamily::kAllocation},
    {"AllocateStore", CodeFamily::kAllocation},
    {"GetComputerNameExW", CodeFamily::kWin32},
    {"GetTimeFormatW", CodeFamily::kWin32},
    {"GetDateFormatW", CodeFamily::kWin32},
    {"FileTimeToSystemTime", CodeFamily::kWin32},
    {"CM_Locate_DevNode_ExW", CodeFamily::kConfiguration},
    {"CM_Reenumerate_DevNode_Ex", CodeFamily::kConfiguration},
    {"RegOpenKeyExW", CodeFamily::kWin32, true},
    {"RegCreateKeyExW", CodeFamily::kWin32, true},
    {"RegCloseKey", CodeFamily::kWin32},
    {"RegQueryInfoKeyW", CodeFamily::kWin32},
    {"RegEnumKeyExW", CodeFamily::kWin32},
    {"RegQueryValueExW", CodeFamily::kWin32},
    {"RegSetValueExW", CodeFamily::kWin32},
    {"RegDeleteKeyW", CodeFamily::kWin32},
    {"fopen", CodeFamily::kRuntime},
    {"CreateFileA", CodeFamily::kWin32},
    {"ReadFile", CodeFamily::kWin32, false, true},
    {"WriteFile", CodeFamily::kWin32, false, true},
    {"SetFilePointer", CodeFamily::kWin32},
    {"FlushFileBuffers", CodeFamily::kWin32},
    {"CloseHandle", CodeFamily::kWin32},
    {"CreateDirectoryA", CodeFamily::kWin32},
    {"DeleteFileA", CodeFamily::kWin32},
    {"FindFirstFileA", CodeFamily::kWin32},
    {"FindNextFileA", CodeFamily::kWin32},
    {"GetModuleFileNameA", CodeFamily::kWin32},
    {"CreateThread", CodeFamily::kWin32},
    {"CreateFileW", CodeFamily::kWin32},
    {"DeviceIoControl", CodeFamily::kWin32},
};

/// The position of an operation in that table, or the table's length for an unknown name.
constexpr std::size_t OperationIndex(std::string_view name) {
  std::size_t index = 0;
  while (index < std::size(kOperations) && kOperations[index].name != name) {
    ++index;
  }
  return index;
}

/// The words that may stand for the codes of a family.
std::span<const CodeName> CodeWords(CodeFamily family);

} // namespace simhost
