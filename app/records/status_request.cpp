#include "app/records/status_request.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/channel/request_table.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/records/array_reading.h"
#include "app/records/timed_ioctl.h"
#include "platform/host.h"
#include "platform/wbem.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"

namespace korvex {

namespace {

constexpr int kInTransition = 3;
constexpr DWORD kTransitionWait = 2000; ///< milliseconds

/// Takes the image that an answer holds; what cannot be read leaves the record without status.
void TakeAnswer(OrbWmiEnumerator& answer, UtilStatusInfo& record) {
  std::uint32_t infoSize = 0;
  answer.GetProperty(L"StatusInfoSize", &infoSize, sizeof infoSize);
  if (infoSize < record.Size()) {
    TracePrint("Returned status information contains less data (0x%x) than expected (0x%x).\n",
               static_cast<unsigned>(infoSize), static_cast<unsigned>(record.Size()));
    return;
  }
  const OwnedStore image = MakeStore("statusImage", record.Size());
  if (image == nullptr) {
    return;
  }
  std::uint32_t delivered = 0;
  const wmiReturn status = answer.GetProperty(L"UtilStatusInfoBuffer", image.get(), record.Size(), &delivered);
  if (status != kWmiSuccess) {
    TracePrint("statusInfoEnumerator.getProperty failed with status %d\n", static_cast<int>(status));
    return;
  }
  // What is missing would read as paths of the address 0. A longer image, which is one of other limits, has failed.
  if (delivered == record.Size()) {
    record.TakeImage(image.get());
  }
}

void ReadAnswer(OrbWmiVariant& holder, UtilStatusInfo& record) {
  OrbWmiClass statusClass;
  if (statusClass.Initialize(gDsmChannel->connection, L"UTIL_STATUS_INFO") != kWmiSuccess) {
    TracePrint("Error initializing UTIL_STATUS_INFO class\n");
    return;
  }
  OrbWmiEnumerator answer;
  if (answer.Initialize(&statusClass, &holder) != kWmiSuccess) {
    TracePrint("Error initializing statusInfoEnumerator\n");
    return;
  }
  TakeAnswer(answer, record);
}

/// Results of utilTimedIoctl.
int RequestGen1(std::uint32_t index, UtilStatusInfo& record) {
  OrbWmiVariant holder;
  if (holder.SetProperty(&index, sizeof index, CIM_UINT32) != kWmiSuccess) {
    return -1;
  }
  const int result = utilTimedIoctl(request::kGetModuleStatus, &holder);
  if (result == 0 || result == kInTransition) {
    ReadAnswer(holder, record);
  }
  return result;
}

/// 1 or -1: the requests that the collection sends are timed, each by itself.
int RequestGen2(std::uint32_t index, UtilStatusInfo& record) {
  SelectArrayQuietly(index);
  gStatusScanActive = true;
  InputArgumentsRecord selection = {};
  selection.argType = kByArrayId;
  selection.argID = static_cast<std::uint8_t>(index);
  const RequestTableEntry* row = FindRequest(request::kCollectDsmArrayInfo);
  if (row == nullptr || row->callback == nullptr) {
    return -1;
  }
  OrbWmiVariant output;
  const std::uint32_t status = row->callback(row->code, &selection, output);
  if (status != kWmiSuccess && status != kNothingToDo) {
    return -1;
  }
  utilFillGen2StatusInfo(record);
  return 1;
}

} // namespace

bool RequestStatus(std::uint32_t index, UtilStatusInfo& record) {
  static constexpr int kAttempts = 2;
  for (int attempt = 1;; ++attempt) {
    record.MakeFresh();
    TracePrint("sending utilstatus ioctl for target # %d\n", static_cast<int>(index));
    const int result = InterfaceGeneration() == 2 ? RequestGen2(index, record) : RequestGen1(index, record);
    if (result == -1 || result == 4) {
      return false;
    }
    if (result != kInTransition || attempt == kAttempts) {
      return true;
    }
    Sleep(kTransitionWait);
  }
}

} // namespace korvex
