#include "app/cli/wiring.h"

#include "app/channel/request_table.h"
#include "app/inventory/gen1_inventory.h"
#include "app/inventory/gen2_inventory.h"
#include "app/report/array_report.h"
#include "app/report/summary_listing.h"

namespace korvex {

namespace {

constexpr RequestCallbacks kRequestCallbacks = {
    .collectDsmArrayInfo = CollectDsmArrayInfo,
    .getRdacInfo = GetRdacInfo,
};

constexpr CollectionOutputs kCollectionOutputs = {
    .printListingHead = PrintListingHead,
    .printArraySummaryRow = PrintArraySummaryRow,
    .printListingClosingRule = PrintListingClosingRule,
    .printArrayInformation = PrintArrayInformation,
};

} // namespace

void ConnectRooms() {
  ConnectRequestTable(kRequestCallbacks);
  ConnectCollection(kCollectionOutputs);
}

} // namespace korvex
