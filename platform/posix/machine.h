#pragma once

#include "platform/com.h"
#include "platform/devices.h"
#include "platform/host.h"
#include "platform/registry.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The one port through which the POSIX side of the platform reaches the machine that it runs on.

namespace platform {

/// What RegQueryInfoKeyW tells of a key.
struct RegistryCounts {
  DWORD subkeys = 0;
  DWORD longestSubkey = 0; ///< wide characters
  DWORD values = 0;
  DWORD longestValueName = 0; ///< wide characters
  DWORD longestData = 0;      ///< bytes
};

struct RegistryValue {
  DWORD type = REG_NONE;
  std::vector<std::uint8_t> data;
};

/// One key of the machine's registry, held open. It stays this key when it is deleted: each operation then gives
/// ERROR_KEY_DELETED. Operations give a result code, ERROR_SUCCESS with what they were asked for; paths have components
/// separated by backslashes, an empty one is the key itself. Called from any thread; does not throw but for memory.
class RegistryKey {
public:
  virtual ~RegistryKey() = default;

  /// The key's path below the root, as it is written.
  virtual const std::wstring& Path() const = 0;
  /// The rights that the key grants whoever opens it.
  virtual REGSAM Rights() = 0;
  virtual DWORD Open(std::wstring_view path, std::shared_ptr<RegistryKey>& opened) = 0;
  /// Opens the key, making it and what is missing above it.
  virtual DWORD Create(std::wstring_view path, std::shared_ptr<RegistryKey>& opened, bool& isNew) = 0;
  virtual DWORD Count(RegistryCounts& counts) = 0;
  virtual DWORD SubkeyName(DWORD index, std::wstring& name) = 0;
  virtual DWORD ReadValue(std::wstring_view name, RegistryValue& value) = 0;
  virtual DWORD WriteValue(std::wstring_view name, RegistryValue value) = 0;
  /// ERROR_ACCESS_DENIED for a key with subkeys and for the root.
  virtual DWORD Delete() = 0;
};

/// What a drive makes of one SCSI command.
struct ScsiAnswer {
  std::vector<std::uint8_t> data;
  std::uint8_t status = 0; ///< 0 good
  std::vector<std::uint8_t> sense;
};

/// A physical drive of the machine.
class PhysicalDrivePort {
public:
  virtual ~PhysicalDrivePort() = default;
  /// Carries out a command that asks for data, at most `room` bytes of it; a system error code, or 0.
  virtual DWORD Execute(std::span<const std::uint8_t> command, std::size_t room, ScsiAnswer& answer) = 0;
  /// The drive's SCSI address, of which `length` bytes are told; a system error code, or 0.
  virtual DWORD Address(SCSI_ADDRESS& address, std::size_t& length) = 0;
};

/// What a described fault makes of a call that transfers bytes: it ends after `count` bytes, where that many are asked
/// for, and then fails with `code`. A code alone comes in place of the transfer.
struct TransferFault {
  std::optional<std::uint32_t> code;
  std::optional<std::uint32_t> count;
};

/// The machine behind the platform's calls. Its operations are called from any thread, do not throw, and leave the last
/// error to the platform; the platform saves and restores errno around them, and asks for no faults while one runs.
class Machine {
public:
  virtual ~Machine() = default;

  /// Whether any fault or delay is described at all: asked before each TakeFault, so that a machine without them costs
  /// next to nothing.
  virtual bool HasFaults() const noexcept { return true; }

  /// What a described fault makes of the next `operation` (the platform function's name) on `target` (a file, a class,
  /// a store's name, a text in UTF-8, or empty): none, or the code that the operation gives instead of being carried
  /// out. Counts the operation and waits out a described delay. What the code means is the operation's: an HRESULT, a
  /// CONFIGRET, the last error of a call that gives a BOOL or a count, the errno value of "fopen"; an allocation gives
  /// none whatever the code.
  ///
  /// Asked by, with the target in parentheses: CoInitializeEx, CoInitializeSecurity, CoCreateInstance,
  /// CoSetProxyBlanket, SysAllocString (the text), SafeArrayCreate, SafeArrayGetLBound, SafeArrayGetUBound,
  /// SafeArrayAccessData, VariantCopy, AllocateStore (the store's name), GetComputerNameExW ("ComputerNameDnsHostname"
  /// and its like), GetTimeFormatW and GetDateFormatW (the picture), FileTimeToSystemTime, CM_Locate_DevNode_ExW,
  /// CM_Reenumerate_DevNode_Ex, fopen (the path), RegOpenKeyExW, RegCreateKeyExW, RegDeleteKeyW, RegQueryInfoKeyW,
  /// RegEnumKeyExW and RegCloseKey (the key's path below HKEY_LOCAL_MACHINE), RegQueryValueExW and RegSetValueExW (the
  /// same and the value's name behind a backslash), CreateFileW
  /// and DeviceIoControl (the drive's path), CreateFileA, SetFilePointer, FlushFileBuffers, CreateDirectoryA and
  /// DeleteFileA (the path with slashes), CloseHandle (the same, the drive's path, or empty), FindFirstFileA and
  /// FindNextFileA (the pattern with slashes), GetModuleFileNameA, CreateThread. A code of 0 makes a registry call
  /// succeed without doing anything.
  virtual std::optional<std::uint32_t> TakeFault(std::string_view operation, std::string_view target) = 0;

  /// The same for ReadFile and WriteFile (the file's path).
  virtual TransferFault TakeTransferFault(std::string_view operation, std::string_view target) {
    return {TakeFault(operation, target), std::nullopt};
  }

  /// Makes the COM object of a class: REGDB_E_CLASSNOTREG for a class that the machine does not have.
  virtual HRESULT CreateComObject(REFCLSID classId, REFIID riid, void** object) = 0;

  /// The machine's name of one form, in UTF-16 units; none for a form that it does not have (then `error` is set).
  virtual std::optional<std::wstring> ComputerName(COMPUTER_NAME_FORMAT form, DWORD& error) = 0;

  /// The clock: 100-nanosecond units since 1601-01-01 00:00:00 UTC.
  virtual std::uint64_t Now() = 0;
  virtual void Wait(std::uint32_t milliseconds) = 0;

  /// A thread that the clock is to know: enlisted before it is started, by the thread that starts it, with a number of
  /// its own; then it begins and ends, both told by itself (the end by the starter when it could not be started).
  virtual std::uint64_t EnlistThread() { return 0; }
  virtual void BeginThread(std::uint64_t /*thread*/) {}
  virtual void EndThread(std::uint64_t /*thread*/) {}

  /// The device tree: its root, and a new enumeration of one node.
  virtual CONFIGRET LocateDeviceTreeRoot(DEVINST& node) = 0;
  virtual CONFIGRET ReenumerateDeviceNode(DEVINST node) = 0;

  /// The physical drive of that number; none when the machine does not have it.
  virtual std::shared_ptr<PhysicalDrivePort> PhysicalDrive(std::uint32_t /*number*/) { return nullptr; }

  /// Told of each registry call on an open key, by the function's name, before TakeFault.
  virtual void CountCall(std::string_view /*operation*/) noexcept {}

  /// The registry's HKEY_LOCAL_MACHINE; none for a machine without a registry.
  virtual std::shared_ptr<RegistryKey> LocalMachineKey() { return nullptr; }
};

/// The machine of this process; made by MakeMachine at the first use. It is never destroyed at the end of the process,
/// as objects of static life may still hold what it made. Not to be called while it is being made.
Machine& TheMachine();

/// Makes the machine: supplied by whatever simulates it. Ends the process with a message when its description is
/// refused. The platform may be used while it runs, as long as the call does not need the machine.
std::unique_ptr<Machine> MakeMachine();

/// Puts another machine in place (none: MakeMachine is asked again at the next use); for tests. Gives the one before.
/// No other thread may be using the machine.
std::unique_ptr<Machine> ReplaceMachine(std::unique_ptr<Machine> machine);

/// While one lives, the calling thread's platform calls ask for no faults. The machine's own code holds one wherever
/// the utility enters it through a COM method, so that a fault described for the utility's call cannot strike the
/// machine's use of the same call.
class MachineCode {
public:
  MachineCode() noexcept;
  MachineCode(const MachineCode&) = delete;
  MachineCode& operator=(const MachineCode&) = delete;
  ~MachineCode();
};

/// The directory of the running program; empty when the system does not tell.
std::filesystem::path ExecutableDirectory();

/// What of the platform's own is alive now, for leak checks.
struct LiveObjects {
  std::uint64_t bstrs;
  std::uint64_t safeArrays;
  std::uint64_t handles; ///< of every kind
};
LiveObjects CountLiveObjects();

/// Names and counts of the stores alive now (AllocateStore), as "name" -> count pairs in name order.
void VisitLiveStores(void (*visit)(const char* storeName, std::uint64_t count, void* context), void* context);

} // namespace platform
