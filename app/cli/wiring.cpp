#include "app/cli/wiring.h"

#include "app/channel/request_table.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/gen2_inventory.h"
#include "app/options/feature_option_list.h"
#include "app/options/option_exchange.h"
#include "app/options/option_request_input.h"
#include "app/records/timed_ioctl.h"
#include "app/report/array_report.h"
#include "app/report/summary_listing.h"
#include "app/settings/policy_saving.h"

namespace korvex {

namespace {

constexpr RequestCallbacks kRequestCallbacks = {
    .collectDsmArrayInfo = CollectDsmArrayInfo,
    .getRdacInfo = GetRdacInfo,
    .sendOptionControlRequest = SendOptionControlRequest,
    .buildOptionRequest = BuildOptionRequest,
};

constexpr OptionHandlers kOptionHandlers = {
    .saveLoadBalancePolicy = regSaveLBPSettings,
};

constexpr CollectionOutputs kCollectionOutputs = {
    .printListingHead = PrintListingHead,
    .printArraySummaryRow = PrintArraySummaryRow,
    .printListingClosingRule = PrintListingClosingRule,
    .printArrayInformation = PrintArrayInformation,
    .timedIoctl = utilTimedIoctl,
};

} // namespace

void ConnectRooms() {
  ConnectRequestTable(kRequestCallbacks);
  ConnectOptionHandlers(kOptionHandlers);
  ConnectCollection(kCollectionOutputs);
}

} // namespace korvex
