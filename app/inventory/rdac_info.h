#pragma once

#include "app/cli/console/owned_store.h"

#include <array>
#include <cstddef>
#include <cstdint>

// What the DSM of interface generation 1 tells about one array module, gathered from the answers to three requests.
// Fields bear the names of the driver's properties that they are copied from and are zero where the driver told
// nothing. Time stamps are seconds since 1970-01-01 00:00:00 UTC.

namespace korvex {

/// A world-wide name as generation 1 holds it.
using WwnBytes = std::array<std::uint8_t, 16>;

/// Bits of RdacModule::flags.
namespace module_flag {
enum Bit : std::uint32_t {
  kSingleController = 1U << 0,
  kRestoreCfg = 1U << 1,
  kScanTriggered = 1U << 3,
  kAVTEnabled = 1U << 4,
  kPage2CSubPage = 1U << 5,
  kPathCongestionEnabled = 1U << 9,
  kExtPathRecoveryEnabled = 1U << 10,
};
} // namespace module_flag

/// Bits of RdacLun::flags.
namespace lun_flag {
enum Bit : std::uint32_t {
  kCurrentOwningController = 1U << 0, ///< 0 = A, 1 = B
  kBootOwningController = 1U << 1,
  kPreferredController = 1U << 2,
  kPresent = 1U << 3, ///< the DSM reported this LUN
  kNotConfigured = 1U << 4,
  kRemoveEligible = 1U << 5, ///< no property sets it
  kQuiescent = 1U << 6,
  kNotReady = 1U << 7,
  kBusy = 1U << 8,
  kUTMLun = 1U << 9,
  kNeedsReservationCheck = 1U << 10,
  kTASBitSet = 1U << 11,
  kVdOwnershipTransferEnabled = 1U << 14,
  kAPTPLSet = 1U << 15,
};
} // namespace lun_flag

/// Bits of RdacController::flags.
namespace controller_flag {
enum Bit : std::uint32_t {
  kFailed = 1U << 0,
  kUTMLunExists = 1U << 1,
  kPresent = 1U << 2, ///< the DSM reported this controller
  kFailoverInProgress = 1U << 4,
  kServiceMode = 1U << 6,
};
} // namespace controller_flag

/// Bits of RdacPath::flags; both are set when the DSM reported the path.
namespace path_flag {
enum Bit : std::uint32_t {
  kReported = 1U << 0,
  kPresent = 1U << 1,
};
} // namespace path_flag

struct RdacModule {
  std::uint32_t ObjectCount;
  std::uint64_t ModuleHandle;
  std::uint32_t flags; ///< module_flag
  std::uint32_t ScanTaskState;
  WwnBytes WWN;
  std::uint8_t VirtualTargetID;  ///< no property fills it
  std::uint32_t FirmwareVersion; ///< four bytes, shown lowest first
  std::uint32_t FailoverMethod;
  std::uint32_t LoadBalancePolicy;
  // Extended path recovery, filled only when it is enabled.
  std::uint8_t ControllerPathLossRecovery;
  std::uint32_t ControllerPathRecoveryStart;    ///< time stamp
  std::uint32_t ControllerPathRecoveryTimeLeft; ///< seconds
  std::uint8_t ControllerPathRecoveryCtrlId;
  std::uint8_t FailoverEventThresholdRecovery;
  std::uint32_t FailoverEventThresholdRecoveryStart; ///< time stamp
  std::uint32_t FailoverEventThresholdTimeLeft;      ///< seconds
  std::uint32_t FailoverEventThresholdCount;
  std::uint32_t FailoverEventThresholdCounter;
  std::uint8_t FailoverEventThresholdCtrlId;

  bool Has(module_flag::Bit bit) const { return (flags & bit) != 0; }
};

struct RdacLun {
  std::uint32_t flags;     ///< lun_flag
  std::uint64_t LunObject; ///< no property fills it
  std::uint32_t DiskState;
  WwnBytes WWN;
  std::uint32_t LoadBalancePolicy;
  std::uint8_t VdOwnershipTransferAttemptCount; ///< filled only when the transfer is enabled

  bool Has(lun_flag::Bit bit) const { return (flags & bit) != 0; }
  /// Whether any of the WWN's bytes is not zero.
  bool HasWwn() const;
};

struct RdacController {
  std::uint32_t flags; ///< controller_flag
  std::uint64_t ControllerHandle;
  std::uint32_t UTMLun;
  std::uint8_t NumberOfPaths;
  std::uint32_t ReservationPathIndex;

  bool Has(controller_flag::Bit bit) const { return (flags & bit) != 0; }
};

/// One path of a controller.
struct RdacPath {
  std::uint8_t Port;
  std::uint8_t Path;
  std::uint8_t Target;
  std::uint32_t flags; ///< path_flag
  std::uint64_t DirectoryHandle;
  std::uint32_t PathState;
  std::uint32_t PathId;
  std::uint32_t RequestsInProgress;
  std::uint32_t CurrentCongestionStartTime; ///< time stamp
  std::uint32_t CurrentCongestionIntervalCount;
  std::uint32_t CurrentCongestionIoCount;
  std::uint32_t CurrentCongestionIoResponseTotal;
  std::uint32_t CurrentCongestionPopulationSize;
  std::uint32_t AvgCongestionIoResponse;
  std::uint8_t InterfaceType; ///< code of InterfaceTypeName

  bool Has(path_flag::Bit bit) const { return (flags & bit) != 0; }
};

/// How one LUN is reached through one controller.
struct RdacDriveInfo {
  std::uint8_t RoundRobinIndex; ///< filled from the driver's ControllerIndex
  std::uint8_t NumDrives;
  std::uint8_t PreferredControllerPath; ///< 255 = none
};

/// One LUN on one path of a controller.
struct RdacDrive {
  std::uint8_t StartState;
  std::uint8_t RemoveState;
  std::uint8_t PowerState;
  std::uint32_t DriveState;
  std::uint64_t UtmLunDevice;
  std::uint64_t LunPathDevice;
  std::uint32_t PathWeight;

  /// Whether the driver knows a device of the LUN on this path.
  bool HasDevice() const { return UtmLunDevice != 0 || LunPathDevice != 0; }
};

/// One record, made for given limits: a module, a table of LUNs, the controllers A and B with their paths, and for each
/// LUN and controller how the LUN is reached, in one zero-filled store. Every access is checked: what lies outside the
/// limits is none.
class RdacInfo {
public:
  static constexpr std::uint32_t kControllers = 2;

  RdacInfo() = default;
  /// Makes the store for `maxLuns` LUNs and `maxPaths` paths a controller; false when it cannot be allocated.
  bool Allocate(std::uint32_t maxLuns, std::uint32_t maxPaths);
  void Release();
  /// Whether the store exists; the record's other members may be used only then.
  bool Exists() const { return m_store != nullptr; }
  /// Fills the store with zeros.
  void Clear();

  std::uint32_t SizeInBytes() const { return m_size; }
  const void* Address() const { return m_store.get(); }
  std::uint32_t MaxLuns() const { return m_maxLuns; }
  std::uint32_t MaxPaths() const { return m_maxPaths; }

  RdacModule& Module() { return *static_cast<RdacModule*>(At(0)); }
  const RdacModule& Module() const { return *static_cast<const RdacModule*>(At(0)); }
  RdacLun* Lun(std::uint32_t lun);
  const RdacLun* Lun(std::uint32_t lun) const { return const_cast<RdacInfo*>(this)->Lun(lun); }
  RdacController* Controller(std::uint32_t controller);
  const RdacController* Controller(std::uint32_t controller) const {
    return const_cast<RdacInfo*>(this)->Controller(controller);
  }
  RdacPath* Path(std::uint32_t controller, std::uint32_t path);
  const RdacPath* Path(std::uint32_t controller, std::uint32_t path) const {
    return const_cast<RdacInfo*>(this)->Path(controller, path);
  }
  RdacDriveInfo* DriveInfo(std::uint32_t lun, std::uint32_t controller);
  const RdacDriveInfo* DriveInfo(std::uint32_t lun, std::uint32_t controller) const {
    return const_cast<RdacInfo*>(this)->DriveInfo(lun, controller);
  }
  RdacDrive* Drive(std::uint32_t lun, std::uint32_t controller, std::uint32_t path);
  const RdacDrive* Drive(std::uint32_t lun, std::uint32_t controller, std::uint32_t path) const {
    return const_cast<RdacInfo*>(this)->Drive(lun, controller, path);
  }

private:
  void* At(std::size_t offset) const { return m_store.get() + offset; }
  std::size_t ControllerOffset(std::uint32_t controller) const;
  std::size_t DriveInfoOffset(std::uint32_t lun, std::uint32_t controller) const;

  OwnedStore m_store;
  std::uint32_t m_size = 0; ///< bytes
  std::uint32_t m_maxLuns = 0;
  std::uint32_t m_maxPaths = 0;
};

/// What request 0x4D03 works on: which module, and where its record and its name go.
struct RdacInfoRequest {
  std::uint32_t moduleId = 0;
  RdacInfo info;
  /// The module's name, terminated.
  std::array<char, 37> moduleName = {};
  /// How much of `moduleName` may be used, terminator included.
  std::uint32_t moduleNameRoom = 37;
  /// Whether the DSM has refused the first of the module's requests: there is no such module.
  bool isModuleRefused = false;
  /// Whether the DSM has told all bytes of the module's WWN.
  bool isWwnWhole = false;
};

} // namespace korvex
