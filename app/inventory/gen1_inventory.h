#pragma once

#include "app/inventory/rdac_info.h"
#include "wmi/orb_wmi_variant.h"

#include <cstdint>
#include <span>

// What the DSM of interface generation 1 knows about array modules, controllers, paths and LUNs.

namespace korvex {

/// Asks for gUtilMaxLuns and gUtilMaxPaths where they are unknown; true when neither request failed.
bool AskForRecordLimits();

/// Allocates and fills one record in `request`; 1, 0 on failure, -1 when the channel could not be opened. The record
/// stays the request's in every case.
int GetRdacInfoForTarget(std::uint32_t moduleId, RdacInfoRequest& request);

/// Reads a module and leaves its name (at most 31 characters) and WWN in slot 0 of gModuleName and gModuleWWN, which
/// must exist. `interfaceTypes`, unless it is empty, gets the interface-type code of every path present, controller A's
/// first, packed at the front, and 255 in every other place. 1, or 0 on failure.
int utilGetTargetName(std::uint32_t moduleId, std::span<std::uint8_t> interfaceTypes = {});
/// Whether utilGetTargetName failed last because the DSM has no such module, and whether it got the module's WWN whole.
extern bool gTargetIsAbsent;
extern bool gTargetIsNamed;

/// Callback of request 0x4D03; the argument is the address of an RdacInfoRequest whose record is allocated. 0, or 1 on
/// failure.
std::uint32_t GetRdacInfo(std::uint32_t requestCode, void* argument, OrbWmiVariant& output);

/// Copy what one answer tells about the request's module into its record (the first also its name). What an answer
/// does not tell, or tells of another module, stays zero.
void CopyModuleInfoToRdacInfo(RdacInfoRequest& request, OrbWmiVariant& answer);
void CopyControllerInfoToRdacInfo(RdacInfoRequest& request, OrbWmiVariant& answer);
void CopyDiskInfoToRdacInfo(RdacInfoRequest& request, OrbWmiVariant& answer);

/// The LUNs reachable through one controller (0 = A, 1 = B) of the module with this WWN (32 lower-case hexadecimal
/// digits), with their path counts, on standard output. 1, or 0 after a message.
int ListControllerLunsRdac(const char* wwn, std::uint32_t controllerIndex);

} // namespace korvex
