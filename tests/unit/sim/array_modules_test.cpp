#include "simhost/host.h"
#include "simhost/text.h"

#include <gtest/gtest.h>
#include <string>

// What a DSM of interface generation 1 answers about the modules of a description.

namespace simhost {
namespace {

std::string Shown(const CimObject& object);

std::string Shown(const CimValue& value) {
  if (const CimObject* object = value.IfObject()) {
    return Shown(*object);
  }
  std::string text;
  if (const std::vector<CimValue>* elements = value.IfArray()) {
    for (const CimValue& element : *elements) {
      text += Shown(element);
    }
    return "[" + text + "]";
  }
  if (const std::vector<std::uint8_t>* bytes = value.IfBytes()) {
    for (const std::uint8_t byte : *bytes) {
      text += "." + std::to_string(byte);
    }
    return text;
  }
  return value.IsNull()              ? "null"
         : value.IfText() != nullptr ? Utf8FromWide(*value.IfText())
                                     : std::to_string(value.Number());
}

/// The properties in the order of their class: "{Name=value Name=value}".
std::string Shown(const CimObject& object) {
  std::string text;
  for (std::size_t index = 0; index < object.Count(); ++index) {
    text += (index == 0 ? "" : " ") + Utf8FromWide(object.Class()->properties[index].name) + "=" +
            Shown(object.ValueAt(index));
  }
  return "{" + text + "}";
}

std::string Answer(Host& host, const wchar_t* method, CimValue id) {
  const MethodDefinition* called = host.repository.RequireClass(L"ZELMPXDSM_WMI_METHODS")->FindMethod(method);
  CimObject input(called->inputClass);
  input.Set(L"ModuleId", std::move(id));
  std::optional<CimObject> output;
  const Outcome outcome = host.repository.ExecuteMethod(
      L"ZELMPXDSM_WMI_METHODS.InstanceName=\"ROOT\\\\ZELMPXDSM\\\\0000_0\"", method, &input, output);
  return SUCCEEDED(outcome.result) ? Shown(output->ValueAt(0)) : "failed";
}

std::string OneArray(const std::string& keys) {
  return R"({"dsms": [{"generation": 1, "arrays": [{)" + keys + "}]}]}";
}

TEST(ArrayModulesTest, TellsEveryPropertyOnItsOwn) {
  const auto host =
      ReadHost(OneArray(R"("id": 4000000000, "moduleId": 1, "handle": "0xffffffffffffffff", "firmware": "1.2.a.ff",
    "failover": 2, "objectCount": 3, "scanTaskState": 4, "policy": 5, "singleController": 6, "scanTriggered": 7, "avtEnabled": 8,
    "restoreConfiguration": 9, "page2CSubPage": 10, "pathCongestion": 11, "extendedPathRecovery": 12,
    "controllerPathLoss": {"active": 13, "start": 14, "timeLeft": 15, "controller": 16},
    "failoverThreshold": {"active": 17, "start": 18, "timeLeft": 19, "count": 20, "counter": 21, "controller": 22},
    "name": {"bytes": "4e 00"}, "wwn": "0102", "controllers": [{"moduleId": 1, "designation": 2, "handle": 3, "utmLun": 4,
      "reservationPath": 5, "pathsInUse": 6, "failed": 7, "failoverInProgress": 8, "serviceMode": 9, "utmLunEnabled": 10,
      "paths": [{"index": 11, "handle": 12, "state": 13, "requestsInProgress": 14, "id": 15, "interface": "0x100000010",
        "congestion": {"start": 17, "intervals": 18, "ioExceeded": 19, "totalResponse": 20, "population": 21,
          "averageResponse": 22}, "port": 23, "path": 24, "target": 25}]}],
    "luns": [{"moduleId": 1, "number": 2, "owner": 3, "bootOwner": 4, "preferred": 5, "ownershipTransfer": 6,
      "ownershipTransferAttempts": 7, "notConfigured": 8, "quiescent": 9, "notReady": 10, "busy": 11, "isUtmLun": 12,
      "needsReservationCheck": 13, "policy": 14, "tas": 15, "persistThroughPowerLoss": 16, "diskState": 17,
      "announcedDriveInfos": 18, "wwn": [19], "driveInfos": [{"moduleId": 20, "controller": 21, "announcedDrives": 22,
        "preferredPath": 23, "paths": [{"moduleId": 24, "controller": 25, "index": 26, "utmDevice": 27, "device": 28,
          "state": 29, "startState": 30, "removeState": 31, "powerState": 32, "weight": 33}]}, {}]}])"),
               {});
  EXPECT_EQ(
      Answer(*host, L"VrxGetModuleInfo", 4000000000U),
      "{Id=1 ModuleHandle=18446744073709551615 FirmwareVersion=4278845953 FailoverMethod=2 ObjectCount=3 "
      "ScanTaskState=4 LoadBalancePolicy=5 SingleController=6 ScanTriggered=7 AVTEnabled=8 RestoreCfg=9 "
      "Page2CSubPage=10 PathCongestionEnabled=11 ExtPathRecoveryEnabled=12 ControllerPathLossRecovery=13 "
      "ControllerPathRecoveryStart=14 ControllerPathRecoveryTimeLeft=15 ControllerPathRecoveryCtrlId=16 "
      "FailoverEventThresholdRecovery=17 FailoverEventThresholdRecoveryStart=18 FailoverEventThresholdTimeLeft=19 "
      "FailoverEventThresholdCount=20 FailoverEventThresholdCounter=21 FailoverEventThresholdCtrlId=22 Name=.78.0 "
      "WWN=.1.2}");
  EXPECT_EQ(Answer(*host, L"VrxGetControllerInfo", 4000000000U),
            "{ControllerModuleList=[{ArrayModuleId=1 ControllerIndex=2 ControllerHandle=3 UTMLun=4 "
            "ReservationPathIndex=5 NumberOfPaths=6 Failed=7 FailoverInProgress=8 ServiceMode=9 UTMLunExists=10 "
            "ControllerPathList=[{PathIndex=11 DirectoryHandle=12 PathState=13 RequestsInProgress=14 PathId=15 "
            "CurrentCongestionStartTime=17 CurrentCongestionIntervalCount=18 CurrentCongestionIoCount=19 "
            "CurrentCongestionIoResponseTotal=20 CurrentCongestionPopulationSize=21 AvgCongestionIoResponse=22 "
            "InterfaceType=4294967312 ControllerAddress={Port=23 Path=24 Target=25}}]}]}");
  // The second drive-info list has what follows from the array: it is that of the second controller, which has no
  // paths.
  EXPECT_EQ(
      Answer(*host, L"VrxGetDiskInfo", 4000000000U),
      "{DiskInfoList=[{ArrayModuleId=1 LunNumber=2 CurrentOwningController=3 BootOwningController=4 "
      "PreferredController=5 VdOwnershipTransferEnabled=6 VdOwnershipTransferAttemptCount=7 NotConfigured=8 "
      "Quiescent=9 NotReady=10 Busy=11 UTMLun=12 NeedsReservationCheck=13 LoadBalancePolicy=14 TASBitSet=15 "
      "APTPLSet=16 DiskState=17 NumDriveInfos=18 WWN=.19 DriveInfoList=["
      "{ArrayModuleId=20 ControllerIndex=21 NumDrives=22 PreferredControllerPath=23 DriveInfoList=["
      "{ArrayModuleId=24 ControllerIndex=25 PathIndex=26 UtmLunDevice=27 LunPathDevice=28 DriveState=29 "
      "StartState=30 RemoveState=31 PowerState=32 PathWeight=33}]}"
      "{ArrayModuleId=4000000000 ControllerIndex=1 NumDrives=0 PreferredControllerPath=255 DriveInfoList=[]}]}]}");
  EXPECT_EQ(Answer(*host, L"VrxGetModuleInfo", 0U), "failed");
  EXPECT_EQ(Answer(*host, L"VrxGetControllerInfo", 1U), "failed");
  EXPECT_EQ(Answer(*host, L"VrxGetDiskInfo", CimValue()), "failed");
}

} // namespace
} // namespace simhost
