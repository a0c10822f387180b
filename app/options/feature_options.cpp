#include "app/options/feature_options.h"

#include "app/channel/channel.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_codes.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/owned_store.h"
#include "app/cli/console/print.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/options/feature_option_list.h"
#include "app/options/feature_option_table.h"

namespace korvex {

namespace {

void TraceAnswer(const OptionRequestRecord& record) {
  TracePrint("Magic: 0x%x\n", static_cast<unsigned>(record.Magic));
  TracePrint("RequestType: 0x%x\n", static_cast<unsigned>(record.RequestType));
  TracePrint("BufferSize: 0x%x\n", static_cast<unsigned>(record.BufferSize));
  TracePrint("BytesTransferred: 0x%x\n", static_cast<unsigned>(record.BytesTransferred));
  TracePrint("TotalBytesNeeded: 0x%x\n", static_cast<unsigned>(record.TotalBytesNeeded));
}

/// Asks again, with as much room as the DSM says it needs, until everything fits.
int ShowOptions() {
  TracePrint("No input arguments\n");
  OwnedStore details;
  OptionRequestRecord record;
  record.RequestType = kReadOptions;
  for (;;) {
    TracePrint("Send FeatureOption request\n");
    if (Ioctl(request::kSendOptionControlRequest, &record) == kIoctlFailed) {
      TracePrint("Request failed\n");
      return -1;
    }
    TraceAnswer(record);
    if (record.TotalBytesNeeded == 0) {
      TracePrint("TotalBytesNeeded zero.  Break loop\n");
      PrintFeatureOptions(record);
      return 1;
    }
    details.reset();
    details = MakeStore("optionDetails", record.TotalBytesNeeded);
    if (details == nullptr) {
      TracePrint("Unable to allocate memory\n");
      return 0;
    }
    record.BufferSize = record.TotalBytesNeeded;
    record.TotalBytesNeeded = 0;
    record.details = reinterpret_cast<OptionDetailRecord*>(details.get());
    record.detailCount = record.BufferSize / kOptionDetailBytes;
    TracePrint("Retry request\n");
  }
}

/// Tells what the DSM made of one option and completes what it accepted.
void ActOnVerdict(const OptionDetailRecord& detail) {
  TracePrint("Option '%s'.  Status 0x%x\n", detail.Keyword, static_cast<unsigned>(detail.Status));
  switch (detail.Status) {
  case 2:
    Print("The value ('0x%x') for option '%s' is out of range.  Valid range is '0x%x' to '0x%x'\n",
          static_cast<unsigned>(detail.Value), detail.Keyword, static_cast<unsigned>(detail.MinimumValue),
          static_cast<unsigned>(detail.MaximumValue));
    break;
  case 3:
    Print("Option '%s' has an invalid parameter\n", detail.Keyword);
    break;
  case 4:
    Print("Option '%s' is unknown\n", detail.Keyword);
    break;
  case 5:
    Print("Option '%s' returned an unknown status\n", detail.Keyword);
    break;
  case 8:
    Print("Option '%s' failed due to target '%x' in transition. Verify target status before retry.\n", detail.Keyword,
          static_cast<unsigned>(detail.Value));
    break;
  default:
    if (detail.completionHandler != nullptr) {
      detail.completionHandler(detail);
    }
    break;
  }
}

int ApplyOptions(char* argument) {
  TracePrint("Input arguments found\n");
  OptionDetailList details;
  if (!ParseFeatureOptions(argument, details)) {
    TracePrint("Request failed\n");
    return 0;
  }
  OptionRequestRecord record;
  record.RequestType = kApplyOptions;
  record.BufferSize = details.SizeInBytes();
  record.details = details.Records();
  record.detailCount = details.Count();
  TracePrint("Send FeatureOption request\n");
  if (Ioctl(request::kSendOptionControlRequest, &record) == kIoctlFailed) {
    PrintError("Request failed - %s!\n", RuntimeErrorText());
    return -1;
  }
  for (std::uint32_t i = 0; i < details.Count(); ++i) {
    ActOnVerdict(details.Records()[i]);
  }
  return 1;
}

} // namespace

int ProcessFeatureOptions() {
  if (!utilDetermineBusFd()) {
    PrintError("Unable to determine virtual bus!!\n");
    return 0;
  }
  return gOptionArgument == nullptr ? ShowOptions() : ApplyOptions(gOptionArgument);
}

} // namespace korvex
