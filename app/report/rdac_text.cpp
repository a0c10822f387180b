#include "app/report/rdac_text.h"

#include "app/cli/console/bounded_text.h"
#include "app/report/time_text.h"
#include "wmi/trace_text.h"

#include <cstring>
#include <iterator>

namespace korvex {

namespace {

constexpr const char* kPolicyNames[] = {"RoundRobinSubset", "LeastQueueDepth", "LeastPathWeight"};

constexpr const char* kStateNames[] = {
    "OPTIMAL",         "FAILED",  "OPTIMAL_NEED_CHECK", "OPTIMAL_CHECKING", "FAILED_NEED_CHECK", "FAILED_CHECKING",
    "SYSTEM_SPECIFIC", "OFFLINE", "ADMIN_OFFLINE",
};

} // namespace

ReportText HandleText(std::uint64_t handle) {
  // Without a format: a report has more handles than anything else.
  ReportText text;
  if (handle == 0) {
    std::memcpy(text.m_text, "0x0", sizeof "0x0");
  } else {
    std::memcpy(text.m_text, "0x", 2);
    std::memcpy(text.m_text + 2, PointerText(handle).c_str(), sizeof(PointerText));
  }
  return text;
}

ReportText FirmwareText(std::uint32_t version) {
  ReportText text;
  BoundedFormat(text.m_text, sizeof text.m_text, "%x.%x.%x.%x", static_cast<unsigned>(version & 0xFF),
                static_cast<unsigned>(version >> 8 & 0xFF), static_cast<unsigned>(version >> 16 & 0xFF),
                static_cast<unsigned>(version >> 24));
  return text;
}

ReportText TimeText(std::uint32_t seconds) {
  ReportText text;
  FormatTimeOfDay(seconds, text.m_text, sizeof text.m_text);
  return text;
}

ReportText PathAddressText(std::uint8_t port, std::uint8_t path, std::uint8_t target) {
  ReportText text;
  BoundedFormat(text.m_text, sizeof text.m_text, "P%02uP%02uI%02u", static_cast<unsigned>(port),
                static_cast<unsigned>(path), static_cast<unsigned>(target));
  return text;
}

const char* RdacPolicyName(std::uint32_t policy) {
  return policy < std::size(kPolicyNames) ? kPolicyNames[policy] : nullptr;
}

const char* RdacStateName(std::uint32_t state) {
  return state < std::size(kStateNames) ? kStateNames[state] : "UNKNOWN";
}

} // namespace korvex
