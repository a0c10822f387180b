#include "simhost/module_properties.h"

#include "simhost/array_words.h"

#include <charconv>
#include <optional>
#include <string>

namespace simhost {
namespace {

constexpr CodeName kNoYes[] = {{"no", 0}, {"yes", 1}};
constexpr CodeName kFailoverUnits[] = {{"controller", 0}, {"LUN", 1}};
constexpr CodeName kNoPath[] = {{"none", 255}};

// The words of generation 2 stand for what comes closest to them.
constexpr CodeName kPolicies[] = {{"round robin with subset", 0},
                                  {"least queue depth", 1},
                                  {"least path weight", 2},
                                  {"weighted paths", 2},
                                  {"round robin", 0},
                                  {"fail over only", 3},
                                  {"least blocks", 3},
                                  {"vendor specific", 3}};
constexpr CodeName kTasStates[] = {
    {"no", 0}, {"yes", 1}, {"not set", 0}, {"set", 1}, {"conflict", 0}, {"set in progress", 0}, {"not supported", 0}};
constexpr CodeName kStates[] = {{"optimal", 0},
                                {"failed", 1},
                                {"optimal need check", 2},
                                {"optimal checking", 3},
                                {"failed need check", 4},
                                {"failed checking", 5},
                                {"system specific", 6},
                                {"offline", 7},
                                {"administratively offline", 8},
                                {"working", 0},
                                {"failback", 3},
                                {"pending remove", 7},
                                {"active/optimized", 0},
                                {"active/unoptimized", 0},
                                {"standby", 0},
                                {"unavailable", 7},
                                {"transitioning", 3}};

/// Four numbers as the utility shows them, "7.16.8.0", the first in the lowest byte.
std::optional<std::uint32_t> FirmwareNumber(const std::string& text) {
  std::uint32_t version = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (int byte = 0; byte < 4; ++byte) {
    std::uint8_t number = 0;
    const std::from_chars_result read = std::from_chars(at, end, number, 16);
    const bool isLast = byte == 3;
    if (read.ec != std::errc() || (isLast ? read.ptr != end : read.ptr == end || *read.ptr != '.')) {
      return std::nullopt;
    }
    version |= static_cast<std::uint32_t>(number) << (8 * byte);
    at = read.ptr + (isLast ? 0 : 1);
  }
  return version;
}

std::uint64_t ReadFirmware(const Node& firmware) {
  const std::string* text = firmware.Value()->IfText();
  if (text == nullptr || text->starts_with("0x")) {
    return firmware.UnsignedNumber(0, UINT32_MAX);
  }
  const std::optional<std::uint32_t> version = FirmwareNumber(*text);
  if (!version) {
    firmware.Refuse("four hexadecimal bytes like \"7.16.8.0\", or an integer from 0 to 4294967295");
  }
  return *version;
}

constexpr ModuleProperty Number(std::wstring_view name, std::string_view key, std::uint64_t fallback = 0) {
  return {name, key, CIM_UINT32, {}, false, fallback};
}
constexpr ModuleProperty Handle(std::wstring_view name, std::string_view key) {
  return {name, key, CIM_UINT64};
}
constexpr ModuleProperty Code(std::wstring_view name, std::string_view key, std::span<const CodeName> words,
                              std::uint64_t fallback = 0) {
  return {name, key, CIM_UINT32, words, false, fallback};
}
constexpr ModuleProperty Flag(std::wstring_view name, std::string_view key, std::span<const CodeName> words = kNoYes) {
  return {name, key, CIM_UINT32, words, true};
}
/// A key of generation 2 alone.
constexpr ModuleProperty Other(std::string_view key) {
  return {{}, key};
}

/// The version 7.16.8.0, its first number in the lowest byte.
constexpr std::uint64_t kDefaultFirmware = 0x00081607;

constexpr ModuleProperty kModule[] = {
    Number(L"Id", "moduleId"),
    Handle(L"ModuleHandle", "handle"),
    {L"FirmwareVersion", "firmware", CIM_UINT32, {}, false, kDefaultFirmware, ReadFirmware},
    Code(L"FailoverMethod", "failover", kFailoverUnits, 1),
    Number(L"ObjectCount", "objectCount"),
    Number(L"ScanTaskState", "scanTaskState"),
    Code(L"LoadBalancePolicy", "policy", kPolicies),
    Flag(L"SingleController", "singleController"),
    Flag(L"ScanTriggered", "scanTriggered"),
    Flag(L"AVTEnabled", "avtEnabled"),
    Flag(L"RestoreCfg", "restoreConfiguration"),
    Flag(L"Page2CSubPage", "page2CSubPage"),
    Flag(L"PathCongestionEnabled", "pathCongestion"),
    Flag(L"ExtPathRecoveryEnabled", "extendedPathRecovery"),
    Flag(L"ControllerPathLossRecovery", "controllerPathLoss.active"),
    Number(L"ControllerPathRecoveryStart", "controllerPathLoss.start"),
    Number(L"ControllerPathRecoveryTimeLeft", "controllerPathLoss.timeLeft"),
    Code(L"ControllerPathRecoveryCtrlId", "controllerPathLoss.controller", kDesignations),
    Flag(L"FailoverEventThresholdRecovery", "failoverThreshold.active"),
    Number(L"FailoverEventThresholdRecoveryStart", "failoverThreshold.start"),
    Number(L"FailoverEventThresholdTimeLeft", "failoverThreshold.timeLeft"),
    Number(L"FailoverEventThresholdCount", "failoverThreshold.count"),
    Number(L"FailoverEventThresholdCounter", "failoverThreshold.counter"),
    Code(L"FailoverEventThresholdCtrlId", "failoverThreshold.controller", kDesignations),
    Other("interfaceTypes"),
    Other("devices"),
    Other("announcedControllers"),
    Other("announcedLuns"),
    Other("raw"),
    Other("size"),
};

constexpr ModuleProperty kUtmLun[] = {
    Number(L"UTMLun", "utmLun"),
    Flag(L"UTMLunExists", "utmLunEnabled"),
};

constexpr ModuleProperty kController[] = {
    Number(L"ArrayModuleId", "moduleId"),
    Code(L"ControllerIndex", "designation", kDesignations),
    Handle(L"ControllerHandle", "handle"),
    Number(L"UTMLun", "utmLun"),
    Number(L"ReservationPathIndex", "reservationPath"),
    Number(L"NumberOfPaths", "pathsInUse"),
    Flag(L"Failed", "failed"),
    Flag(L"FailoverInProgress", "failoverInProgress"),
    Flag(L"ServiceMode", "serviceMode"),
    Flag(L"UTMLunExists", "utmLunEnabled"),
    Other("serial"),
    Other("raw"),
    Other("size"),
};

constexpr ModuleProperty kPath[] = {
    Number(L"PathIndex", "index"),
    Handle(L"DirectoryHandle", "handle"),
    Code(L"PathState", "state", kStates),
    Number(L"RequestsInProgress", "requestsInProgress"),
    Number(L"PathId", "id"),
    Number(L"CurrentCongestionStartTime", "congestion.start"),
    Number(L"CurrentCongestionIntervalCount", "congestion.intervals"),
    Number(L"CurrentCongestionIoCount", "congestion.ioExceeded"),
    Number(L"CurrentCongestionIoResponseTotal", "congestion.totalResponse"),
    Number(L"CurrentCongestionPopulationSize", "congestion.population"),
    Number(L"AvgCongestionIoResponse", "congestion.averageResponse"),
    {L"InterfaceType", "interface", CIM_UINT64, kInterfaces},
    Other("congestion.present"),
    Other("extension"),
};

constexpr ModuleProperty kAddress[] = {
    Number(L"Port", "port"),
    Number(L"Path", "path"),
    Number(L"Target", "target"),
};

constexpr ModuleProperty kLun[] = {
    Number(L"ArrayModuleId", "moduleId"),
    Number(L"LunNumber", "number"),
    Code(L"CurrentOwningController", "owner", kDesignations),
    Code(L"BootOwningController", "bootOwner", kDesignations),
    Code(L"PreferredController", "preferred", kDesignations),
    Flag(L"VdOwnershipTransferEnabled", "ownershipTransfer"),
    Number(L"VdOwnershipTransferAttemptCount", "ownershipTransferAttempts"),
    Flag(L"NotConfigured", "notConfigured"),
    Flag(L"Quiescent", "quiescent"),
    Flag(L"NotReady", "notReady"),
    Flag(L"Busy", "busy"),
    Flag(L"UTMLun", "isUtmLun"),
    Flag(L"NeedsReservationCheck", "needsReservationCheck"),
    Code(L"LoadBalancePolicy", "policy", kPolicies),
    Flag(L"TASBitSet", "tas", kTasStates),
    Flag(L"APTPLSet", "persistThroughPowerLoss"),
    Code(L"DiskState", "diskState", kStates),
    Number(L"NumDriveInfos", "announcedDriveInfos"),
    Other("vendorProduct"),
    Other("state"),
    Other("failover"),
    Other("persistSent"),
    Other("preferredSerial"),
    Other("ownerSerial"),
    Other("disk"),
    Other("throttled"),
    Other("groupThrottled"),
    Other("internalState"),
    Other("alb"),
    Other("pathsInUse"),
    Other("raw"),
    Other("size"),
};

constexpr ModuleProperty kDriveInfo[] = {
    Number(L"ArrayModuleId", "moduleId"),
    Code(L"ControllerIndex", "controller", kDesignations),
    Number(L"NumDrives", "announcedDrives"),
    Code(L"PreferredControllerPath", "preferredPath", kNoPath, 255),
};

constexpr ModuleProperty kDrive[] = {
    Number(L"ArrayModuleId", "moduleId"),
    Code(L"ControllerIndex", "controller", kDesignations),
    Number(L"PathIndex", "index"),
    Handle(L"UtmLunDevice", "utmDevice"),
    Handle(L"LunPathDevice", "device"),
    Code(L"DriveState", "state", kStates),
    Number(L"StartState", "startState"),
    Number(L"RemoveState", "removeState"),
    Number(L"PowerState", "powerState"),
    Number(L"PathWeight", "weight"),
    Other("id"),
    Other("extension"),
    Other("lastGoodState"),
    Other("previousStatus"),
    Other("deviceInfo"),
    Other("deviceInfoRest"),
    Other("addressLength"),
    Other("port"),
    Other("path"),
    Other("target"),
    Other("lun"),
    Other("requestsInProgress"),
    Other("condition"),
    Other("flags"),
};

} // namespace

std::span<const ModuleProperty> ModuleProperties() {
  return kModule;
}
std::span<const ModuleProperty> ModuleUtmLunProperties() {
  return kUtmLun;
}
std::span<const ModuleProperty> ModuleControllerProperties() {
  return kController;
}
std::span<const ModuleProperty> ModulePathProperties() {
  return kPath;
}
std::span<const ModuleProperty> ModuleAddressProperties() {
  return kAddress;
}
std::span<const ModuleProperty> ModuleLunProperties() {
  return kLun;
}
std::span<const ModuleProperty> ModuleDriveInfoProperties() {
  return kDriveInfo;
}
std::span<const ModuleProperty> ModuleDriveProperties() {
  return kDrive;
}

} // namespace simhost
