#include "app/channel/channel.h"
#include "app/cli/console/trace.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/rdac_properties.h"

#include <algorithm>
#include <cstring>

namespace korvex {

namespace {

constexpr FlagProperty kModuleFlags[] = {
    {L"SingleController", module_flag::kSingleController},
    {L"ScanTriggered", module_flag::kScanTriggered},
    {L"AVTEnabled", module_flag::kAVTEnabled},
    {L"RestoreCfg", module_flag::kRestoreCfg},
    {L"Page2CSubPage", module_flag::kPage2CSubPage},
    {L"PathCongestionEnabled", module_flag::kPathCongestionEnabled},
    {L"ExtPathRecoveryEnabled", module_flag::kExtPathRecoveryEnabled},
};

constexpr NumberProperty<RdacModule> kModuleNumbers[] = {
    {L"FirmwareVersion", &RdacModule::FirmwareVersion},
    {L"FailoverMethod", &RdacModule::FailoverMethod},
    {L"ObjectCount", &RdacModule::ObjectCount},
    {L"ScanTaskState", &RdacModule::ScanTaskState},
    {L"LoadBalancePolicy", &RdacModule::LoadBalancePolicy},
};

void ReadExtendedPathRecovery(OrbWmiEnumerator& answer, RdacModule& module) {
  module.ControllerPathLossRecovery = ReadLowByte(answer, L"ControllerPathLossRecovery");
  module.ControllerPathRecoveryStart = ReadNumber(answer, L"ControllerPathRecoveryStart");
  module.ControllerPathRecoveryTimeLeft = ReadNumber(answer, L"ControllerPathRecoveryTimeLeft");
  module.ControllerPathRecoveryCtrlId = ReadLowByte(answer, L"ControllerPathRecoveryCtrlId");
  module.FailoverEventThresholdRecovery = ReadLowByte(answer, L"FailoverEventThresholdRecovery");
  module.FailoverEventThresholdRecoveryStart = ReadNumber(answer, L"FailoverEventThresholdRecoveryStart");
  module.FailoverEventThresholdTimeLeft = ReadNumber(answer, L"FailoverEventThresholdTimeLeft");
  module.FailoverEventThresholdCount = ReadNumber(answer, L"FailoverEventThresholdCount");
  module.FailoverEventThresholdCounter = ReadNumber(answer, L"FailoverEventThresholdCounter");
  module.FailoverEventThresholdCtrlId = ReadLowByte(answer, L"FailoverEventThresholdCtrlId");
}

/// A name that fills its bytes has no terminator among them.
void ReadName(OrbWmiEnumerator& answer, RdacInfoRequest& request) {
  char name[36] = {};
  if (answer.GetProperty(L"Name", name, sizeof name) != kWmiSuccess) {
    name[0] = '\0';
  }
  const std::size_t room = std::min<std::size_t>(request.moduleNameRoom, request.moduleName.size());
  const std::size_t length = std::min(strnlen(name, sizeof name), room - 1);
  std::memcpy(request.moduleName.data(), name, length);
  request.moduleName[length] = '\0';
}

void ReadModule(OrbWmiEnumerator& answer, RdacInfoRequest& request) {
  RdacModule& module = request.info.Module();
  module.ModuleHandle = ReadHandle(answer, L"ModuleHandle");
  ReadName(answer, request);
  std::uint32_t delivered = 0;
  answer.GetProperty(L"WWN", module.WWN.data(), static_cast<std::uint32_t>(module.WWN.size()), &delivered);
  request.isWwnWhole = delivered == module.WWN.size();
  ReadNumbers<RdacModule>(answer, kModuleNumbers, module);
  module.flags = ReadFlags(answer, kModuleFlags);
  if (module.Has(module_flag::kExtPathRecoveryEnabled)) {
    ReadExtendedPathRecovery(answer, module);
  }
}

} // namespace

void CopyModuleInfoToRdacInfo(RdacInfoRequest& request, OrbWmiVariant& answer) {
  OrbWmiClass moduleClass;
  if (moduleClass.Initialize(gDsmChannel->connection, L"VRXDSM_ARRAY_MODULE") != kWmiSuccess) {
    TracePrint("Error initializing VRXDSM_ARRAY_MODULE class\n");
    return;
  }
  OrbWmiEnumerator moduleInfo;
  if (moduleInfo.Initialize(&moduleClass, &answer) != kWmiSuccess) {
    TracePrint("Error initializing moduleInfoEnumerator\n");
    return;
  }
  const std::uint32_t id = ReadNumber(moduleInfo, L"Id");
  TracePrint("Check for valid ArrayId\n");
  if (id != request.moduleId) {
    TracePrint("Controller information is for a different array.  Wanted ID %d, received ID %d\n",
               static_cast<int>(request.moduleId), static_cast<int>(id));
    return;
  }
  ReadModule(moduleInfo, request);
}

} // namespace korvex
