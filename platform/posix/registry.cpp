#include "platform/registry.h"

#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/machine.h"
#include "platform/posix/machine_access.h"

#include <algorithm>
#include <cwchar>
#include <new>

// Handles, rights and arguments of the registry's calls; the keys are the machine's.

namespace {

using platform::RegistryKey;

/// A key as one handle has it.
struct OpenKey {
  std::shared_ptr<RegistryKey> key;
  REGSAM rights = 0;
};

/// Of static life without an end, as the machine's.
platform::HandleTable<OpenKey>& OpenKeys() {
  static auto& keys = *new platform::HandleTable<OpenKey>;
  return keys;
}

std::uintptr_t NumberOf(HKEY key) {
  return reinterpret_cast<std::uintptr_t>(key);
}

std::optional<OpenKey> KeyOf(HKEY handle) {
  if (handle == HKEY_LOCAL_MACHINE) {
    std::shared_ptr<RegistryKey> root = platform::TheMachine().LocalMachineKey();
    return root == nullptr ? std::nullopt : std::optional(OpenKey{std::move(root), KEY_ALL_ACCESS});
  }
  return OpenKeys().Find(NumberOf(handle));
}

std::wstring_view ViewOf(LPCWSTR text) {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

/// What a described fault makes of a call on the key or on what `below` names in it.
std::optional<DWORD> FaultOfKey(std::string_view operation, const RegistryKey& key, LPCWSTR below = nullptr) {
  if (platform::MachineWithFaults() == nullptr) {
    return std::nullopt;
  }
  std::wstring target = key.Path();
  if (!ViewOf(below).empty()) {
    target += target.empty() ? L"" : L"\\";
    target += below;
  }
  return platform::FaultOf(operation, target.c_str());
}

/// Carries out `call(OpenKey&)`, which gives a DWORD, for the key of a handle.
template <class Call>
LSTATUS Carry(HKEY handle, std::string_view operation, LPCWSTR below, Call call) noexcept {
  const platform::ErrnoGuard guard;
  try {
    std::optional<OpenKey> key = KeyOf(handle);
    if (!key) {
      return ERROR_INVALID_HANDLE;
    }
    platform::TheMachine().CountCall(operation);
    if (const auto fault = FaultOfKey(operation, *key->key, below)) {
      return static_cast<LSTATUS>(*fault);
    }
    const platform::MachineCode inside;
    return static_cast<LSTATUS>(call(*key));
  } catch (const std::bad_alloc&) {
    return ERROR_NOT_ENOUGH_MEMORY;
  }
}

/// Gives a handle for a key when it grants the rights that are asked for.
DWORD HandOut(std::shared_ptr<RegistryKey> key, REGSAM desired, PHKEY opened) {
  constexpr REGSAM kViews = 0x0300; // which of two registries a 32-bit program means
  desired &= ~kViews;
  if ((desired & ~key->Rights()) != 0) {
    return ERROR_ACCESS_DENIED;
  }
  *opened = reinterpret_cast<HKEY>(OpenKeys().Add({std::move(key), desired})); // NOLINT(performance-no-int-to-ptr)
  return ERROR_SUCCESS;
}

template <class Number>
void Tell(Number* place, Number value) {
  if (place != nullptr) {
    *place = value;
  }
}

} // namespace

LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM desired, PHKEY opened) {
  if (opened == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  *opened = nullptr;
  return Carry(key, "RegOpenKeyExW", path, [&](const OpenKey& parent) -> DWORD {
    if (options != 0) {
      return ERROR_INVALID_PARAMETER;
    }
    std::shared_ptr<RegistryKey> found;
    const DWORD result = parent.key->Open(ViewOf(path), found);
    return result == ERROR_SUCCESS ? HandOut(std::move(found), desired, opened) : result;
  });
}

LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM desired,
                        SECURITY_ATTRIBUTES* security, PHKEY opened, DWORD* disposition) {
  if (opened == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  *opened = nullptr;
  return Carry(key, "RegCreateKeyExW", path, [&](const OpenKey& parent) -> DWORD {
    if (path == nullptr || reserved != 0 || keyClass != nullptr || options != REG_OPTION_NON_VOLATILE ||
        security != nullptr) {
      return ERROR_INVALID_PARAMETER;
    }
    std::shared_ptr<RegistryKey> made;
    bool isNew = false;
    DWORD result = parent.key->Create(path, made, isNew);
    if (result == ERROR_SUCCESS) {
      result = HandOut(std::move(made), desired, opened);
    }
    if (result == ERROR_SUCCESS) {
      Tell(disposition, isNew ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY);
    }
    return result;
  });
}

LSTATUS RegCloseKey(HKEY key) {
  const LSTATUS result = Carry(key, "RegCloseKey", nullptr, [](const OpenKey&) { return ERROR_SUCCESS; });
  // A described failure closes the key all the same, as nobody could close it afterwards.
  const bool wasOpen = key == HKEY_LOCAL_MACHINE || OpenKeys().Remove(NumberOf(key));
  return wasOpen ? result : static_cast<LSTATUS>(ERROR_INVALID_HANDLE);
}

LSTATUS RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, DWORD* classLength, DWORD* reserved, DWORD* subkeys,
                         DWORD* longestSubkey, DWORD* longestClass, DWORD* values, DWORD* longestValueName,
                         DWORD* longestData, DWORD* securityBytes, FILETIME* lastWrite) {
  return Carry(key, "RegQueryInfoKeyW", nullptr, [&](const OpenKey& open) -> DWORD {
    if (reserved != nullptr || (keyClass != nullptr && classLength == nullptr)) {
      return ERROR_INVALID_PARAMETER;
    }
    if ((open.rights & KEY_QUERY_VALUE) == 0) {
      return ERROR_ACCESS_DENIED;
    }
    platform::RegistryCounts counts;
    const DWORD result = open.key->Count(counts);
    if (result != ERROR_SUCCESS) {
      return result;
    }
    if (keyClass != nullptr && *classLength == 0) {
      return ERROR_MORE_DATA;
    }
    Tell(keyClass, L'\0');
    Tell(classLength, DWORD{0});
    Tell(subkeys, counts.subkeys);
    Tell(longestSubkey, counts.longestSubkey);
    Tell(longestClass, DWORD{0});
    Tell(values, counts.values);
    Tell(longestValueName, counts.longestValueName);
    Tell(longestData, counts.longestData);
    Tell(securityBytes, DWORD{0});
    Tell(lastWrite, FILETIME{0, 0});
    return ERROR_SUCCESS;
  });
}

LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* length, DWORD* reserved, LPWSTR keyClass,
                      DWORD* classLength, FILETIME* lastWrite) {
  return Carry(key, "RegEnumKeyExW", nullptr, [&](const OpenKey& open) -> DWORD {
    if (name == nullptr || length == nullptr || reserved != nullptr || keyClass != nullptr || classLength != nullptr) {
      return ERROR_INVALID_PARAMETER;
    }
    if ((open.rights & KEY_ENUMERATE_SUB_KEYS) == 0) {
      return ERROR_ACCESS_DENIED;
    }
    std::wstring found;
    const DWORD result = open.key->SubkeyName(index, found);
    if (result != ERROR_SUCCESS) {
      return result;
    }
    if (found.size() >= *length) {
      return ERROR_MORE_DATA;
    }
    std::wmemcpy(name, found.c_str(), found.size() + 1);
    *length = static_cast<DWORD>(found.size());
    Tell(lastWrite, FILETIME{0, 0});
    return ERROR_SUCCESS;
  });
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR valueName, DWORD* reserved, DWORD* type, BYTE* data, DWORD* bytes) {
  return Carry(key, "RegQueryValueExW", valueName, [&](const OpenKey& open) -> DWORD {
    if (reserved != nullptr || (data != nullptr && bytes == nullptr)) {
      return ERROR_INVALID_PARAMETER;
    }
    if ((open.rights & KEY_QUERY_VALUE) == 0) {
      return ERROR_ACCESS_DENIED;
    }
    platform::RegistryValue value;
    const DWORD result = open.key->ReadValue(ViewOf(valueName), value);
    if (result != ERROR_SUCCESS) {
      return result;
    }
    Tell(type, value.type);
    const DWORD room = bytes == nullptr ? 0 : *bytes;
    Tell(bytes, static_cast<DWORD>(value.data.size()));
    if (data == nullptr) {
      return ERROR_SUCCESS;
    }
    if (value.data.size() > room) {
      return ERROR_MORE_DATA;
    }
    std::ranges::copy(value.data, data);
    return ERROR_SUCCESS;
  });
}

LSTATUS RegSetValueExW(HKEY key, LPCWSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes) {
  return Carry(key, "RegSetValueExW", valueName, [&](const OpenKey& open) -> DWORD {
    if (reserved != 0 || (data == nullptr && bytes != 0)) {
      return ERROR_INVALID_PARAMETER;
    }
    if ((open.rights & KEY_SET_VALUE) == 0) {
      return ERROR_ACCESS_DENIED;
    }
    platform::RegistryValue value{type, {}};
    value.data.assign(data, data + bytes);
    return open.key->WriteValue(ViewOf(valueName), std::move(value));
  });
}

LSTATUS RegDeleteKeyW(HKEY key, LPCWSTR path) {
  if (path == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  return Carry(key, "RegDeleteKeyW", path, [&](const OpenKey& parent) -> DWORD {
    std::shared_ptr<RegistryKey> found;
    DWORD result = parent.key->Open(path, found);
    if (result == ERROR_SUCCESS) {
      result = (found->Rights() & DELETE) == 0 ? ERROR_ACCESS_DENIED : found->Delete();
    }
    return result;
  });
}
