#pragma once

#include "platform/registry_key.h"

#include <cstddef>
#include <cstdint>

// The registry as the utility uses it. Each operation gives the registry's result code, and the code of one that failed
// is the thread's last error, too, so that the system error text of the last error tells it.

namespace korvex {

/// Characters of a subkey's name that are kept.
inline constexpr std::size_t kSubkeyNameLength = 50;
/// A subkey's name, terminated.
using SubkeyName = wchar_t[kSubkeyNameLength + 1];

struct SubkeyCounts {
  DWORD subkeys = 0;
  DWORD longestName = 0; ///< in wide characters, without the terminator
};

/// Opens the key `path` below `parent` with full access. ERROR_SUCCESS can come with no key in `opened`.
DWORD OpenRegistryKey(HKEY parent, const wchar_t* path, platform::RegKey& opened);

/// How many subkeys an open key has.
DWORD CountSubkeys(HKEY key, SubkeyCounts& counts);

/// The name of the subkey at a place of the key's order, empty on failure; ERROR_MORE_DATA when it is longer than
/// kSubkeyNameLength, ERROR_NO_MORE_ITEMS behind the last.
DWORD ReadSubkeyName(HKEY key, DWORD index, SubkeyName& name);

/// Stores a 32-bit number (REG_DWORD).
DWORD SetRegistryNumber(HKEY key, const wchar_t* valueName, std::uint32_t value);

/// Deletes a key without subkeys below `parent`.
DWORD DeleteRegistryKey(HKEY parent, const wchar_t* name);

} // namespace korvex
