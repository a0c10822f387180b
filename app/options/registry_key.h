#pragma once

#include "platform/error.h"
#include "platform/registry_key.h"

#include <cstdint>

// The registry as the utility uses it. The registry's functions leave the last error alone: every failure here stores
// its code as the thread's last error, so that messages can name it.

namespace korvex {

/// Characters of a key name that are read; a longer name is a failure with ERROR_MORE_DATA.
inline constexpr std::uint32_t kKeyNameLength = 50;
/// Room for such a name with its terminator.
using KeyName = wchar_t[kKeyNameLength + 1];

/// One open key. Its operations give the registry's result codes.
class RegistryKey {
public:
  /// Open a key below HKEY_LOCAL_MACHINE, or below another key, with KEY_ALL_ACCESS. An earlier key is closed first.
  DWORD OpenMachineKey(const wchar_t* path);
  DWORD OpenSubkey(const RegistryKey& parent, const wchar_t* name);
  void Close() { m_key.reset(); }
  /// Whether a key is open. Opening can succeed without giving one.
  bool IsOpen() const { return static_cast<bool>(m_key); }

  /// How many subkeys there are, and the characters of the longest name among them.
  DWORD CountSubkeys(std::uint32_t& count, std::uint32_t& longestName) const;
  /// The name of the subkey at `index`, empty on failure; ERROR_NO_MORE_ITEMS behind the last.
  DWORD SubkeyName(std::uint32_t index, KeyName& name) const;
  /// Deletes a subkey that has no subkeys itself.
  DWORD DeleteSubkey(const wchar_t* name) const;
  /// Stores a 32-bit number (REG_DWORD).
  DWORD SetNumber(const wchar_t* name, std::uint32_t value) const;

private:
  DWORD Open(HKEY parent, const wchar_t* path);

  platform::RegKey m_key;
};

} // namespace korvex
