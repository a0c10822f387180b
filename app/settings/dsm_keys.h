#pragma once

#include "app/options/registry_key.h"

#include <cstdint>
#include <span>

// The device-specific keys that a generation-2 DSM keeps below its Parameters: per array a key, below it a key per
// controller and per LUN, below those a key per path; path keys and VID/PID keys also at the top.

namespace korvex {

/// Kinds of keys, by the prefix of their names.
enum DsmKeyType : std::uint32_t {
  kArraySerialKey = 1, ///< "ArraySN#" and the array's WWN
  kPathKey = 3,        ///< "DSMPath#" and the low 32 bits of the path identifier in hexadecimal
  kLunSerialKey = 4,   ///< "MultiPathDeviceSN#" and the LUN's WWN
  kControllerKey = 5,  ///< "TargetPortGroupSN#" and the controller's serial number
  kVidPidKey = 6,      ///< any other name: a VID/PID text
};

/// One listed key.
struct DsmKeyEntry {
  std::uint8_t isActive; ///< 0 or 1: the key of a device that is present
  std::uint32_t type;    ///< DsmKeyType
  KeyName name;
};

/// What stands behind the prefix of a key's name.
const wchar_t* TextOfKey(const wchar_t* name);

/// Keys in the registry's order.
class DsmKeyList {
public:
  DsmKeyList() = default;
  ~DsmKeyList() { Release(); }
  DsmKeyList(const DsmKeyList&) = delete;
  DsmKeyList& operator=(const DsmKeyList&) = delete;

  /// Makes room for `count` cleared entries in place of what there was; false when there is no memory.
  bool Allocate(std::uint32_t count);
  void Release();
  std::span<DsmKeyEntry> Entries() const { return {m_entries, m_count}; }

private:
  DsmKeyEntry* m_entries = nullptr;
  std::uint32_t m_count = 0;
};

/// Lists a key's subkeys by kind; 1 (no entries for a key without subkeys), or 0 after a trace line.
int RegpEnumDSM2Key(const RegistryKey& key, DsmKeyList& list);

/// Opens a subkey; false after a trace line.
bool RegpOpenDSM2SubKey(const RegistryKey& key, const wchar_t* name, RegistryKey& subkey);

/// Deletes a subkey and tells so on standard output; whether it was deleted. `indent` is the blanks between the
/// parent's name and the rest of the line.
bool UtilpDeleteSubKey(const RegistryKey& parent, const wchar_t* parentName, const wchar_t* subkeyName,
                       const char* indent);

} // namespace korvex
