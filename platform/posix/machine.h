#pragma once

#include "platform/com.h"
#include "platform/devices.h"
#include "platform/host.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The one port through which the POSIX side of the platform reaches the machine that it runs on.

namespace platform {

/// The machine behind the platform's calls. The platform saves and restores errno around every call of it.
class Machine {
public:
  virtual ~Machine() = default;

  /// What a described fault makes of the next `operation` (the platform function's name) on `target` (a file, a class, a
  /// store's name, or empty): none, or the code that the operation gives instead of being carried out. Counts the operation
  /// and waits out a described delay.
  virtual std::optional<std::uint32_t> TakeFault(std::string_view operation, std::string_view target) = 0;

  /// Makes the COM object of a class: REGDB_E_CLASSNOTREG for a class that the machine does not have.
  virtual HRESULT CreateComObject(REFCLSID classId, REFIID riid, void** object) = 0;

  /// The machine's name of one form, in UTF-16 units; none for a form that it does not have (then `error` is set).
  virtual std::optional<std::wstring> ComputerName(COMPUTER_NAME_FORMAT form, DWORD& error) = 0;

  /// The clock: 100-nanosecond units since 1601-01-01 00:00:00 UTC.
  virtual std::uint64_t Now() = 0;
  virtual void Wait(std::uint32_t milliseconds) = 0;

  /// The device tree: its root, and a new enumeration of one node.
  virtual CONFIGRET LocateDeviceTreeRoot(DEVINST& node) = 0;
  virtual CONFIGRET ReenumerateDeviceNode(DEVINST node) = 0;
};

/// The machine of this process; made by MakeMachine at the first use.
Machine& TheMachine();

/// Makes the machine: supplied by whatever simulates it. Ends the process with a message when its description is refused.
std::unique_ptr<Machine> MakeMachine();

/// Puts another machine in place (none: MakeMachine is asked again at the next use); for tests. Gives the one before.
std::unique_ptr<Machine> ReplaceMachine(std::unique_ptr<Machine> machine);

/// What of the platform's own is alive now, for leak checks.
struct LiveObjects {
  std::uint64_t bstrs;
  std::uint64_t safeArrays;
};
LiveObjects CountLiveObjects();

/// Names and counts of the stores alive now (AllocateStore), as "name" -> count pairs in name order.
void VisitLiveStores(void (*visit)(const char* storeName, std::uint64_t count, void* context), void* context);

} // namespace platform
