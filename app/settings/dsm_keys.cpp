#include "app/settings/dsm_keys.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "platform/allocation.h"
#include "wmi/trace_text.h"

#include <cwchar>

namespace korvex {

namespace {

struct KindOfKey {
  const wchar_t* prefix;
  DsmKeyType type;
};

/// In the order of the tests; the last one takes what is left.
constexpr KindOfKey kKinds[] = {
    {L"DSMPath#", kPathKey},
    {L"MultiPathDeviceSN#", kLunSerialKey},
    {L"TargetPortGroupSN#", kControllerKey},
    {L"ArraySN#", kArraySerialKey},
    {L"", kVidPidKey},
};

const KindOfKey& KindOf(const wchar_t* name) {
  const KindOfKey* kind = kKinds;
  while (std::wcsncmp(name, kind->prefix, std::wcslen(kind->prefix)) != 0) {
    ++kind;
  }
  return *kind;
}

void TraceFailedRead(DWORD result, std::uint32_t expected, std::uint32_t found) {
  if (result == ERROR_MORE_DATA) {
    TracePrint("DeviceSettings subKey enumeration failure.  Error %d. Insufficient subKey length.\n",
               static_cast<int>(result));
  } else if (result == ERROR_NO_MORE_ITEMS) {
    TracePrint("RegpEnumDSM2Key: DeviceSettings subKey enumeration exhausted. subKeys expected/found %d/%d\n",
               static_cast<int>(expected), static_cast<int>(found));
  } else {
    TracePrint("DeviceSettings subKey enumeration failure.  error - %s\n", LastErrorText().c_str());
  }
}

/// False after a trace line.
bool ReadEntry(const RegistryKey& key, std::uint32_t index, std::uint32_t count, DsmKeyEntry& entry) {
  const DWORD result = key.SubkeyName(index, entry.name);
  if (result != ERROR_SUCCESS) {
    TraceFailedRead(result, count, index);
    return false;
  }
  entry.type = KindOf(entry.name).type;
  const std::string name = NarrowText(entry.name);
  if (entry.type == kVidPidKey) {
    TracePrint("DeviceSettings subKey '%s' - type is Global VID/PID.\n", name.c_str());
  }
  TracePrint("RegpEnumDSM2Key: subKey[%d] '%s'\n", static_cast<int>(index), name.c_str());
  return true;
}

} // namespace

const wchar_t* TextOfKey(const wchar_t* name) {
  return name + std::wcslen(KindOf(name).prefix);
}

bool DsmKeyList::Allocate(std::uint32_t count) {
  Release();
  m_entries = static_cast<DsmKeyEntry*>(
      platform::AllocateStore("DSM Parameters subKeys data", std::uint64_t{count} * sizeof(DsmKeyEntry)));
  m_count = m_entries == nullptr ? 0 : count;
  return m_entries != nullptr;
}

void DsmKeyList::Release() {
  platform::FreeStore(m_entries);
  m_entries = nullptr;
  m_count = 0;
}

int RegpEnumDSM2Key(const RegistryKey& key, DsmKeyList& list) {
  list.Release();
  std::uint32_t count = 0;
  std::uint32_t longestName = 0;
  if (key.CountSubkeys(count, longestName) != ERROR_SUCCESS) {
    TracePrint("RegpEnumDSM2Key: DeviceSettings subKey query failed. error - %s\n", LastErrorText().c_str());
    return 0;
  }
  if (count == 0) {
    return 1;
  }
  TracePrint("RegpEnumDSM2Key: Number of DSM Parameters subKeys %d. Max subKey name length %d.\n",
             static_cast<int>(count), static_cast<int>(longestName));
  if (!list.Allocate(count)) {
    TracePrint("DSM Parameters subKeys data memory allocation failure.\n");
    return 0;
  }
  for (std::uint32_t index = 0; index < count; ++index) {
    if (!ReadEntry(key, index, count, list.Entries()[index])) {
      list.Release();
      return 0;
    }
  }
  return 1;
}

bool RegpOpenDSM2SubKey(const RegistryKey& key, const wchar_t* name, RegistryKey& subkey) {
  TracePrint("RegpOpenDSM2SubKey: SubKeyName: '%s'\n", NarrowText(name).c_str());
  const DWORD result = subkey.OpenSubkey(key, name);
  if (result != ERROR_SUCCESS) {
    TracePrint("RegpOpenDSM2SubKey: Could not open SubKey. error - %d %s\n", static_cast<int>(result),
               LastErrorText().c_str());
    return false;
  }
  return true;
}

bool UtilpDeleteSubKey(const RegistryKey& parent, const wchar_t* parentName, const wchar_t* subkeyName,
                       const char* indent) {
  const std::string narrowParent = NarrowText(parentName);
  const std::string narrowName = NarrowText(subkeyName);
  const DWORD result = parent.DeleteSubkey(subkeyName);
  if (result != ERROR_SUCCESS) {
    Print(" Unable to delete '%s' SubKey '%s'.  %s\n", narrowParent.c_str(), narrowName.c_str(),
          NarrowText(SystemErrorText(static_cast<DWORD>(result))).c_str());
    return false;
  }
  Print("  '%s'%sSubKey '%s' deleted.\n", narrowParent.c_str(), indent, narrowName.c_str());
  return true;
}

} // namespace korvex
