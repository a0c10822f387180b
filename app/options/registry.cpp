#include "app/options/registry.h"

#include "platform/error.h"

#include <array>

namespace korvex {

namespace {

/// A result code of the registry's; that of a failure becomes the last error.
DWORD Told(LSTATUS result) {
  const auto code = static_cast<DWORD>(result);
  if (code != ERROR_SUCCESS) {
    SetLastError(code);
  }
  return code;
}

} // namespace

DWORD OpenRegistryKey(HKEY parent, const wchar_t* path, platform::RegKey& opened) {
  return Told(RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, opened.put()));
}

DWORD CountSubkeys(HKEY key, SubkeyCounts& counts) {
  counts = {};
  return Told(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &counts.subkeys, &counts.longestName, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr));
}

DWORD ReadSubkeyName(HKEY key, DWORD index, SubkeyName& name) {
  DWORD length = kSubkeyNameLength + 1;
  name[0] = L'\0';
  const DWORD code = Told(RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr));
  name[code == ERROR_SUCCESS ? kSubkeyNameLength : 0] = L'\0';
  return code;
}

DWORD SetRegistryNumber(HKEY key, const wchar_t* valueName, std::uint32_t value) {
  std::array<BYTE, sizeof value> data{};
  for (std::size_t i = 0; i < data.size(); ++i) {
    data[i] = static_cast<BYTE>(value >> (8 * i));
  }
  return Told(RegSetValueExW(key, valueName, 0, REG_DWORD, data.data(), data.size()));
}

DWORD DeleteRegistryKey(HKEY parent, const wchar_t* name) {
  return Told(RegDeleteKeyW(parent, name));
}

} // namespace korvex
