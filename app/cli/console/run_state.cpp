#include "app/cli/console/run_state.h"

#include "app/cli/console/trace.h"

#include <algorithm>
#include <iterator>

namespace korvex {

namespace {
constexpr std::uint8_t kNoArrayId = 255;
char gEmptyText[] = "";
} // namespace

const char* gProgramName = nullptr;
std::int32_t gOptionIndex = 1;
char* gOptionArgument = nullptr;
char* gScanPosition = gEmptyText;
char gOptionChar = '\0';

CommandLineDsm gCommandLineDsm = {};

std::uint8_t gSelectionMode = kAllArrays;
std::uint8_t gSelectedArrayId = kNoArrayId;
char gSelectionWwn[32] = {};
std::uint32_t gNumberOfArrays = 0;
bool gDetailMode = false;
bool gExtendedReport = false;
bool gReportSelectionErrors = true;
bool gStatusScanActive = false;

void ResetRunState() {
  gProgramName = nullptr;
  gOptionIndex = 1;
  gOptionArgument = nullptr;
  gScanPosition = gEmptyText;
  gOptionChar = '\0';
  gCommandLineDsm = {};
  gSelectionMode = kAllArrays;
  gSelectedArrayId = kNoArrayId;
  std::fill(std::begin(gSelectionWwn), std::end(gSelectionWwn), '\0');
  gNumberOfArrays = 0;
  gDetailMode = false;
  gExtendedReport = false;
  gReportSelectionErrors = true;
  gStatusScanActive = false;
  gTraceEnabled = false;
}

} // namespace korvex
