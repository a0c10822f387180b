#pragma once

#include "platform/types.h"

// The configuration manager's device tree.

#ifdef _WIN32
#include <cfgmgr32.h>
#else
using CONFIGRET = DWORD;
using DEVINST = DWORD;
using DEVINSTID_W = WCHAR*;
using HMACHINE = void*;

inline constexpr CONFIGRET CR_SUCCESS = 0x00;
inline constexpr CONFIGRET CR_INVALID_POINTER = 0x03;
inline constexpr CONFIGRET CR_INVALID_FLAG = 0x04;
inline constexpr CONFIGRET CR_NO_SUCH_DEVNODE = 0x0D;
inline constexpr CONFIGRET CR_FAILURE = 0x13;
inline constexpr CONFIGRET CR_MACHINE_UNAVAILABLE = 0x30;
inline constexpr ULONG CM_LOCATE_DEVNODE_NORMAL = 0;

/// The device node of `deviceId`, or of the root of the tree when there is none, on the local machine (`machine` none).
CONFIGRET CM_Locate_DevNode_ExW(DEVINST* node, DEVINSTID_W deviceId, ULONG flags, HMACHINE machine);

/// Enumerates the children of `node` again.
CONFIGRET CM_Reenumerate_DevNode_Ex(DEVINST node, ULONG flags, HMACHINE machine);
#endif
