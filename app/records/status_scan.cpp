#include "app/records/status_scan.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/inventory/limits.h"
#include "app/records/array_reading.h"
#include "app/records/missing_arrays.h"
#include "app/records/record_update.h"
#include "app/records/status_request.h"

namespace korvex {

namespace {

struct ScanLimits {
  std::uint32_t maxLuns = 0;
  std::uint32_t maxPaths = 0;
};

/// Asks for the limits and the number of modules; false after a message.
bool AskForGen1Limits(ScanLimits& limits) {
  TracePrint("sending ioctl for maxLunsPerArray\n");
  if (Ioctl(request::kGetMaxLunsSupported, &limits.maxLuns) == kIoctlFailed) {
    PrintError("Unable to get maxluns request - %s!\n", RuntimeErrorText());
    return false;
  }
  TracePrint("sending ioctl for maxPathsPerController\n");
  if (Ioctl(request::kGetMaxPathsSupported, &limits.maxPaths) == kIoctlFailed) {
    PrintError("Unable to get maxpaths request - %s!\n", RuntimeErrorText());
    return false;
  }
  TracePrint("sending ioctl for maxArrayModules\n");
  if (!AskForArrayCount() || MaxArrayModules == kUnknownLimit) {
    PrintError("Unable to get getmodules request - %s!\n", RuntimeErrorText());
    return false;
  }
  return true;
}

/// Makes the record of a generation-1 scan, or learns how many arrays a generation-2 one has; 1, or the scan's result
/// after a message.
int PrepareGeneration(UtilStatusInfo& current) {
  if (InterfaceGeneration() == 2) {
    if (GetMaxArrayModules() != 1) {
      PrintError("Unable to determine number of connected arrays!!\n");
      return -1;
    }
    return 1;
  }
  ScanLimits limits;
  return AskForGen1Limits(limits) && AllocateStatusInfo(current, limits.maxLuns, limits.maxPaths) ? 1 : 0;
}

/// 1, or the result after a message; `setUpResult` tells what the set-up gave, if it ran.
int PrepareModuleArrays(int& setUpResult) {
  if (gModuleName != nullptr && gModuleWWN != nullptr) {
    return 1;
  }
  setUpResult = InitModuleArrays();
  if (setUpResult != 1) {
    PrintError("Failure in allocation of Module Array.\n");
  }
  return setUpResult;
}

/// False, after a message, when there is no list at all.
bool ListRecords(WwnFileList& records) {
  if (utilPrintWWNList(records) == 1) {
    TracePrint("vrxUtilSys_PrintWWNList wwnFileData numWwnFiles %d\n", static_cast<int>(records.numWwnFiles));
    return true;
  }
  PrintError("vrxUtilSys_PrintWWNList failed\n");
  if (!records.Exists()) {
    PrintError("No WWN File Data.\n");
    return false;
  }
  return true;
}

/// Scans the array read last; false, after a message, when memory ran out.
bool ScanArray(std::uint32_t index, UtilStatusInfo& current, WwnFileList& records) {
  if (InterfaceGeneration() == 2 && !AllocateStatusInfo(current, Gen2MaxLuns(), Gen2MaxPaths())) {
    return false;
  }
  FormWwnFileName();
  const char* directory = vrxUtilSys_SetWwnDirPath();
  if (directory == nullptr || directory[0] == '\0') {
    PrintError("No WWN DIR PATH defined !\n");
  }
  if (!RequestStatus(index, current)) {
    return true;
  }
  records.MarkSeen(gWwnFileName);
  return UpdateRecord(current);
}

/// Scans every array that is found; false, after a message, when memory ran out.
bool ScanArrays(UtilStatusInfo& current, WwnFileList& records) {
  const std::uint32_t arrays = MaxArrayModules;
  std::uint32_t found = 0;
  for (std::uint64_t place = 0; place < IndexesFor(arrays) && found < arrays; ++place) {
    const auto index = static_cast<std::uint32_t>(place);
    if (!ReadArrayByIndex(index)) {
      TracePrint("No Array found, for index = %d\n", static_cast<int>(index));
      continue;
    }
    ++found;
    if (!ScanArray(index, current, records)) {
      return false;
    }
  }
  return true;
}

} // namespace

int utilArrayStatusScan() {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return -1;
  }
  UtilStatusInfo current;
  const int prepared = PrepareGeneration(current);
  if (prepared != 1) {
    return prepared;
  }
  int setUpResult = 0;
  const int modules = PrepareModuleArrays(setUpResult);
  if (modules != 1) {
    return modules;
  }
  WwnFileList records;
  if (!ListRecords(records)) {
    return setUpResult;
  }
  if (!ScanArrays(current, records)) {
    return 0;
  }
  PrintMissingArrays(records);
  return 1;
}

} // namespace korvex
