#include "app/settings/top_level_keys.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/trace.h"
#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "app/settings/settings_removal.h"
#include "wmi/trace_text.h"

#include <cstring>
#include <cwchar>

namespace korvex {

namespace {

enum class Comparison { kKept, kOther, kTooShort };

/// A path key is kept by a present path that agrees with it in all but the last two digits, if it has more than those.
Comparison Compare(const PathKeyText& present, const wchar_t* keyName) {
  const std::string text = NarrowText(TextOfKey(keyName));
  const std::size_t compared = std::strlen(present.c_str()) - 2;
  if (text.size() <= compared) {
    return Comparison::kTooShort;
  }
  return std::strncmp(text.c_str(), present.c_str(), compared) == 0 ? Comparison::kKept : Comparison::kOther;
}

} // namespace

PathKeyText::PathKeyText(std::uint64_t pathId) {
  BoundedFormat(m_digits, sizeof m_digits, "%02x", static_cast<unsigned>(pathId & 0xFFFFFFFF));
}

void MarkPathKeys(const PathKeyText& present) {
  for (DsmKeyEntry& entry : gDsmParameterKeys.Entries()) {
    if (entry.type != kPathKey) {
      continue;
    }
    const Comparison comparison = Compare(present, entry.name);
    if (comparison == Comparison::kKept) {
      entry.isActive = 1;
    } else if (comparison == Comparison::kTooShort) {
      TracePrint("PathKeyName and Global Path Name compare failed with error %s\n", LastErrorText().c_str());
    }
  }
}

void MarkPathKeysOfArray() {
  for (std::uint32_t index = 0; index < gArrayControllerCount; ++index) {
    const TpgControllerRecord controller = StoredController(index);
    for (const TpgPathEntry& path : controller.PathsInUse()) {
      const PathKeyText present(path.pathId);
      for (DsmKeyEntry& entry : gDsmParameterKeys.Entries()) {
        if (entry.type == kPathKey && Compare(present, entry.name) == Comparison::kKept) {
          entry.isActive = 1;
        }
      }
    }
  }
}

void MarkVidPidKeys(const wchar_t* vidPid) {
  for (DsmKeyEntry& entry : gDsmParameterKeys.Entries()) {
    if (entry.type == kVidPidKey && entry.isActive == 0 && std::wcsncmp(entry.name, vidPid, std::wcslen(vidPid)) == 0) {
      entry.isActive = 1;
    }
  }
}

void KeepTopLevelKeys() {
  for (DsmKeyEntry& entry : gDsmParameterKeys.Entries()) {
    entry.isActive = 1;
  }
}

} // namespace korvex
