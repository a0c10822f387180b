#include "app/options/feature_option_list.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/options/dsm_parameters.h"
#include "app/options/feature_option_reader.h"

#include <cstring>

namespace korvex {

namespace {

const OptionHandlers* gHandlers = nullptr;

struct Item {
  char keyword[kOptionKeywordLength + 1] = {};
  std::uint32_t value = 0;
  std::uint8_t isValueProvided = 0;
};

bool Is(const char* keyword, const char* name) {
  return std::strcmp(keyword, name) == 0;
}

/// Actions that carry a value.
bool SetsPath(const char* keyword) {
  return Is(keyword, "SetPathOnline") || Is(keyword, "SetPathOffline");
}

/// Start-up keeps this in place of a digit when the DSM has no version class.
bool HasNoVersionClass() {
  return gMofFileVersion[0] == 1;
}

enum class Saving { kAttached, kIsAnAction, kRefused };

/// What "SaveSettings" does behind another option.
Saving AttachSaving(OptionDetailRecord& last) {
  if (Is(last.Keyword, "LoadBalancePolicy")) {
    if (!HasNoVersionClass()) {
      return Saving::kIsAnAction;
    }
    last.completionHandler = gHandlers == nullptr ? nullptr : &gHandlers->saveLoadBalancePolicy;
    return Saving::kAttached;
  }
  if (SetsPath(last.Keyword)) {
    Print("'SaveSettings' is an invalid action for option '%s'.\n", last.Keyword);
    return Saving::kRefused;
  }
  last.completionHandler = &SaveOptionValue;
  return Saving::kAttached;
}

bool AppendItem(const Item& item, OptionDetailList& details) {
  OptionDetailRecord* record = details.Append();
  if (record == nullptr) {
    return false;
  }
  record->Status = item.isValueProvided == 1 && !SetsPath(item.keyword) ? kOptionIsVariable : kOptionIsAction;
  BoundedCopy(record->Keyword, sizeof record->Keyword, item.keyword);
  record->Value = item.value;
  return true;
}

/// False when nothing is to be sent.
bool TakeItem(const Item& item, OptionDetailList& details) {
  if (!details.IsEmpty() && Is(item.keyword, "SaveSettings")) {
    switch (AttachSaving(details.Last())) {
    case Saving::kAttached:
      return true;
    case Saving::kRefused:
      return false;
    case Saving::kIsAnAction:
      break;
    }
  }
  return AppendItem(item, details);
}

} // namespace

void ConnectOptionHandlers(const OptionHandlers& handlers) {
  gHandlers = &handlers;
}

bool ParseFeatureOptions(char* argument, OptionDetailList& details) {
  TracePrint("ParseFeatureOptions: '%s'\n", argument);
  Item item;
  int result = GetNextFeatureOption(argument, item.keyword, &item.value, &item.isValueProvided);
  while (result == 1) {
    if (!TakeItem(item, details)) {
      return false;
    }
    result = GetNextFeatureOption(nullptr, item.keyword, &item.value, &item.isValueProvided);
  }
  return result == 0;
}

} // namespace korvex
