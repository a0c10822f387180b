#include "app/cli/console/trace.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/settings/settings_removal.h"
#include "app/settings/top_level_keys.h"
#include "wmi/trace_text.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

// The keys of an array's controllers and LUNs, with the path keys below them.

namespace korvex {

namespace {

constexpr std::uint8_t kUnusedSlot = 255;
constexpr std::size_t kSerialLength = 10;

/// The first characters of a text, blanks in place of zero bytes and of what is missing.
std::string PaddedTo(std::size_t length, std::string text) {
  std::ranges::replace(text, '\0', ' ');
  text.resize(length, ' ');
  return text;
}

/// The stored controller whose serial number a key names.
std::optional<TpgControllerRecord> FindController(const wchar_t* keyName) {
  const std::string serial = PaddedTo(kSerialLength, NarrowText(TextOfKey(keyName)));
  for (std::uint32_t index = 0; index < gArrayControllerCount; ++index) {
    const TpgControllerRecord controller = StoredController(index);
    if (PaddedTo(kSerialLength, controller.serialNumber.data()) == serial) {
      return controller;
    }
  }
  return std::nullopt;
}

/// The stored LUN whose WWN a key names.
std::optional<MpgDeviceRecord> FindLun(const wchar_t* keyName) {
  const std::string text = NarrowText(TextOfKey(keyName));
  WwnCharacters wwn;
  if (text.size() < wwn.size()) {
    return std::nullopt;
  }
  std::copy_n(text.begin(), wwn.size(), wwn.begin());
  return FindStoredLun(wwn);
}

bool IsPathOfLun(const MpgDeviceRecord& lun, const char* pathText) {
  return std::ranges::any_of(lun.PathsInUse(), [pathText](const MpgPathEntry& path) {
    return std::strcmp(PathKeyText(path.pathId).c_str(), pathText) == 0;
  });
}

/// Deletes the path keys for which `isPresent` does not say that their path is there; the number deleted.
template <class IsPresent>
std::uint32_t RemovePathKeys(const RegistryKey& partKey, const wchar_t* partName, const DsmKeyList& subkeys,
                             const char* indent, IsPresent isPresent) {
  std::uint32_t deleted = 0;
  for (const DsmKeyEntry& entry : subkeys.Entries()) {
    if (entry.type != kPathKey) {
      TracePrint("Unknown subkey found %s.\n", NarrowText(entry.name).c_str());
      continue;
    }
    if (!isPresent(NarrowText(TextOfKey(entry.name)).c_str()) &&
        UtilpDeleteSubKey(partKey, partName, entry.name, indent)) {
      ++deleted;
    }
  }
  return deleted;
}

/// The end of a key of whose subkeys some were deleted: counts them, and deletes the key itself when none is left.
void FinishPartKey(const RegistryKey& arrayKey, const wchar_t* arrayName, const wchar_t* partName,
                   const DsmKeyList& subkeys, std::uint32_t deleted) {
  gRemovedKeyCount += deleted;
  if (deleted == subkeys.Entries().size()) {
    UtilpDeleteSubKey(arrayKey, arrayName, partName, kArrayPartIndent);
    ++gRemovedKeyCount;
  }
}

} // namespace

bool UtilpTpgPathPresent(const TpgControllerRecord& controller, const char* pathText) {
  const std::uint32_t slots = std::min<std::uint32_t>(gUtilMaxPaths, kInterfaceTypesCapacity);
  std::uint32_t slot = 0;
  while (slot < slots && gInterfaceTypes[slot] == kUnusedSlot) {
    ++slot;
  }
  const std::uint32_t end = std::min<std::uint32_t>(slots, slot + controller.numberOfPaths);
  for (std::size_t next = 0; slot < end && next < controller.paths.size(); ++slot) {
    if (gInterfaceTypes[slot] == kUnusedSlot) {
      continue;
    }
    const PathKeyText present(controller.paths[next++].pathId);
    if (std::strcmp(present.c_str(), pathText) == 0) {
      MarkPathKeys(present);
      return true;
    }
  }
  return false;
}

int UtilpRemoveTpgSettings(const wchar_t* arrayName, const RegistryKey& arrayKey, const wchar_t* controllerName,
                           bool isGone) {
  RegistryKey controllerKey;
  if (!RegpOpenDSM2SubKey(arrayKey, controllerName, controllerKey)) {
    TracePrint("\nFailed to open Array subkey %s.\n", NarrowText(controllerName).c_str());
    return 0;
  }
  if (!controllerKey.IsOpen()) {
    TracePrint("\nNULL Device Specific settings TargetPortGroup Key.\n");
    return 0;
  }
  DsmKeyList subkeys;
  if (RegpEnumDSM2Key(controllerKey, subkeys) == 0) {
    TracePrint("\nAttempt to enumerate TargetPortGroup subkeys failed.");
    return 0;
  }
  const std::optional<TpgControllerRecord> controller = isGone ? std::nullopt : FindController(controllerName);
  const std::uint32_t deleted =
      RemovePathKeys(controllerKey, controllerName, subkeys, kControllerPathIndent,
                     [&](const char* text) { return controller && UtilpTpgPathPresent(*controller, text); });
  controllerKey.Close();
  FinishPartKey(arrayKey, arrayName, controllerName, subkeys, deleted);
  return 1;
}

int UtilpRemoveMpdSettings(const wchar_t* arrayName, const RegistryKey& arrayKey, const wchar_t* lunName, bool isGone) {
  RegistryKey lunKey;
  if (!RegpOpenDSM2SubKey(arrayKey, lunName, lunKey)) {
    TracePrint("\nFailed to open Array subkey %s.\n", NarrowText(lunName).c_str());
    return 0;
  }
  if (!lunKey.IsOpen()) {
    TracePrint("\nNULL Device Specific settings MultiPathDevice Key.\n");
    return 0;
  }
  DsmKeyList subkeys;
  if (RegpEnumDSM2Key(lunKey, subkeys) == 0) {
    TracePrint("\nAttempt to enumerate MultiPathDevice subkeys failed.");
    return 0;
  }
  const std::optional<MpgDeviceRecord> lun = isGone ? std::nullopt : FindLun(lunName);
  if (lun) {
    MarkVidPidKeys(lun->vendorProduct.data());
  }
  const std::uint32_t deleted = RemovePathKeys(lunKey, lunName, subkeys, kLunPathIndent,
                                               [&lun](const char* text) { return lun && IsPathOfLun(*lun, text); });
  lunKey.Close();
  FinishPartKey(arrayKey, arrayName, lunName, subkeys, deleted);
  return 1;
}

} // namespace korvex
