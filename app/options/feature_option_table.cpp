#include "app/options/feature_option_table.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"

#include <algorithm>
#include <span>

namespace korvex {

namespace {

/// A value as "0x" and at most eight digits.
struct ValueText {
  explicit ValueText(std::uint32_t value) { BoundedFormat(text, sizeof text, "0x%x", static_cast<unsigned>(value)); }
  char text[11];
};

void PrintVariable(const OptionDetailRecord& variable) {
  Print("%-40.40s", variable.Keyword);
  Print("  %-10.10s", ValueText(variable.Value).text);
  Print("  %-10.10s", ValueText(variable.DefaultValue).text);
  Print("  %-10.10s", ValueText(variable.MinimumValue).text);
  Print("  %-10.10s\n", ValueText(variable.MaximumValue).text);
}

void PrintVariables(std::span<const OptionDetailRecord> details) {
  Print("                                          Current     Default     Minimum     Maximum\n");
  Print("Variable Options                          Value       Value       Value       Value\n");
  Print("----------------------------------------  ----------  ----------  ----------  ----------\n");
  bool isAnyPrinted = false;
  for (const OptionDetailRecord& detail : details) {
    if (detail.Status == kOptionIsVariable) {
      PrintVariable(detail);
      isAnyPrinted = true;
    }
  }
  if (isAnyPrinted) {
    Print("\n\n");
  } else {
    Print("No variables defined\n\n");
  }
}

void PrintActions(std::span<const OptionDetailRecord> details) {
  Print("Action Options\n");
  Print("---------------------------------------\n");
  bool isAnyPrinted = false;
  for (const OptionDetailRecord& detail : details) {
    if (detail.Status == kOptionIsAction) {
      Print("%-40.40s\n", detail.Keyword);
      isAnyPrinted = true;
    }
  }
  if (!isAnyPrinted) {
    Print("No actions defined\n");
  }
}

} // namespace

void PrintFeatureOptions(const OptionRequestRecord& record) {
  // A DSM may announce more than it was given room for.
  const std::uint32_t count = std::min(record.BytesTransferred / kOptionDetailBytes, record.detailCount);
  const std::span<const OptionDetailRecord> details(record.details, count);
  PrintVariables(details);
  PrintActions(details);
}

} // namespace korvex
