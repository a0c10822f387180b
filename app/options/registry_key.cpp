#include "app/options/registry_key.h"

#include "platform/error.h"

#include <iterator>

namespace korvex {

namespace {

/// Makes a failure the thread's last error.
DWORD Noted(LONG result) {
  const auto code = static_cast<DWORD>(result);
  if (code != ERROR_SUCCESS) {
    SetLastError(code);
  }
  return code;
}

} // namespace

DWORD RegistryKey::Open(HKEY parent, const wchar_t* path) {
  return Noted(RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, m_key.put()));
}

DWORD RegistryKey::OpenMachineKey(const wchar_t* path) {
  return Open(HKEY_LOCAL_MACHINE, path);
}

DWORD RegistryKey::OpenSubkey(const RegistryKey& parent, const wchar_t* name) {
  return Open(parent.m_key.get(), name);
}

DWORD RegistryKey::CountSubkeys(std::uint32_t& count, std::uint32_t& longestName) const {
  DWORD subkeys = 0;
  DWORD characters = 0;
  const LONG result = RegQueryInfoKeyW(m_key.get(), nullptr, nullptr, nullptr, &subkeys, &characters, nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr);
  count = static_cast<std::uint32_t>(subkeys);
  longestName = static_cast<std::uint32_t>(characters);
  return Noted(result);
}

DWORD RegistryKey::SubkeyName(std::uint32_t index, KeyName& name) const {
  auto characters = static_cast<DWORD>(std::size(name));
  const DWORD code = Noted(
      RegEnumKeyExW(m_key.get(), static_cast<DWORD>(index), name, &characters, nullptr, nullptr, nullptr, nullptr));
  name[code == ERROR_SUCCESS ? kKeyNameLength : 0] = L'\0';
  return code;
}

DWORD RegistryKey::DeleteSubkey(const wchar_t* name) const {
  return Noted(RegDeleteKeyW(m_key.get(), name));
}

DWORD RegistryKey::SetNumber(const wchar_t* name, std::uint32_t value) const {
  const DWORD number = value;
  return Noted(RegSetValueExW(m_key.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number));
}

} // namespace korvex
