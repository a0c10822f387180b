#pragma once

#include "platform/handles.h"
#include "platform/types.h"

#include <cstddef>

// The configuration manager's device tree, and disks that are opened for SCSI commands.

#ifdef _WIN32
#include <cfgmgr32.h>
#include <winioctl.h>

// Behind the codes that it builds on.
#include <ntddscsi.h>
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

/// A SCSI command and where its data and its sense data go.
struct SCSI_PASS_THROUGH_DIRECT {
  USHORT Length;
  BYTE ScsiStatus;
  BYTE PathId;
  BYTE TargetId;
  BYTE Lun;
  BYTE CdbLength;
  BYTE SenseInfoLength;
  BYTE DataIn;
  ULONG DataTransferLength; ///< room for data; after the call how much there is
  ULONG TimeOutValue;       ///< seconds
  PVOID DataBuffer;
  ULONG SenseInfoOffset; ///< from the beginning of this structure
  BYTE Cdb[16];
};

struct SCSI_ADDRESS {
  ULONG Length;
  BYTE PortNumber;
  BYTE PathId;
  BYTE TargetId;
  BYTE Lun;
};

inline constexpr BYTE SCSI_IOCTL_DATA_IN = 1;
inline constexpr DWORD IOCTL_SCSI_PASS_THROUGH_DIRECT = 0x0004D014;
inline constexpr DWORD IOCTL_SCSI_GET_ADDRESS = 0x00041018;

/// Opens the physical drive "\\.\PHYSICALDRIVE<n>", which is all that it opens: INVALID_HANDLE_VALUE with
/// ERROR_FILE_NOT_FOUND for a drive that the machine does not have. Close with CloseHandle.
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD sharing, void* security, DWORD disposition, DWORD attributes,
                   HANDLE model);

/// Carries out one of the two control codes on a drive. A SCSI command that the drive refuses is a success with its
/// ScsiStatus; `input` and `output` are one buffer there. Only without overlapping.
BOOL DeviceIoControl(HANDLE device, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                     DWORD* returned, void* overlapped);
#endif

static_assert(sizeof(SCSI_PASS_THROUGH_DIRECT) == 56 && sizeof(SCSI_ADDRESS) == 8);
static_assert(offsetof(SCSI_PASS_THROUGH_DIRECT, ScsiStatus) == 2 && offsetof(SCSI_PASS_THROUGH_DIRECT, DataIn) == 8);
static_assert(offsetof(SCSI_PASS_THROUGH_DIRECT, DataTransferLength) == 12 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, DataBuffer) == 24 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, SenseInfoOffset) == 32 &&
              offsetof(SCSI_PASS_THROUGH_DIRECT, Cdb) == 36);
static_assert(offsetof(SCSI_ADDRESS, PortNumber) == 4 && offsetof(SCSI_ADDRESS, Lun) == 7);
