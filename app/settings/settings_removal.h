#pragma once

#include "app/inventory/gen2_records.h"
#include "app/settings/dsm_keys.h"

#include <cstdint>

// What the steps of one -R in interface generation 2 share.

namespace korvex {

/// The keys directly below Parameters. Path keys and VID/PID keys among them are marked active while the arrays are
/// walked; filled and released by one -R.
extern DsmKeyList gDsmParameterKeys;
/// Keys deleted, or whose deletion was attempted, in one -R.
extern std::uint32_t gRemovedKeyCount;

/// Blanks between the parent's name and the rest of a result line, by what is deleted.
inline constexpr char kControllerPathIndent[] = "                       ";
inline constexpr char kLunPathIndent[] = " ";
inline constexpr char kArrayPartIndent[] = "           ";
inline constexpr char kTopLevelIndent[] = "                                         ";
static_assert(sizeof kControllerPathIndent == 23 + 1 && sizeof kLunPathIndent == 1 + 1 &&
              sizeof kArrayPartIndent == 11 + 1 && sizeof kTopLevelIndent == 41 + 1);

/// Carries out -R in interface generation 2: removes the settings of devices that the DSM does not report. 1 when the
/// keys were examined or the user declined, else 0.
int UtilpRemoveDeviceSpecificSettings();

/// Examine one array's key, and one controller's or LUN's key below it; with `isGone` everything below is removed. 1
/// when the key was processed, 0 after a trace line.
int UtilpRemoveArraySettings(const RegistryKey& parameters, const wchar_t* arrayName, bool isGone);
int UtilpRemoveTpgSettings(const wchar_t* arrayName, const RegistryKey& arrayKey, const wchar_t* controllerName,
                           bool isGone);
int UtilpRemoveMpdSettings(const wchar_t* arrayName, const RegistryKey& arrayKey, const wchar_t* lunName, bool isGone);

/// Whether the text of a path key names one of the controller's paths, taken by the array's path slots in use. The path
/// keys at the top that a path so found keeps are marked.
bool UtilpTpgPathPresent(const TpgControllerRecord& controller, const char* pathText);

} // namespace korvex
