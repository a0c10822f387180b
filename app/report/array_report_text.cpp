#include "app/report/array_report_text.h"

#include "app/inventory/gen2_stores.h"

#include <cstring>
#include <span>

namespace korvex {

namespace {

struct CodeText {
  std::uint32_t code;
  const char* text;
};

constexpr CodeText kControllerPathStates[] = {{1, "Working"}, {2, "Failback"}, {3, "Pending Remove"}, {4, "Failed"}};

constexpr CodeText kLunStates[] = {{1, "Normal"}, {2, "Pending"}, {3, "Failed"}};

constexpr CodeText kLoadBalancePolicies[] = {
    {1, "Fail Over Only"}, {2, "Round Robin"},  {3, "Round Robin with Subset"}, {4, "Dynamic Least Queue Depth"},
    {5, "Weighted Paths"}, {6, "Least Blocks"}, {7, "Vendor Specific"},
};

constexpr CodeText kFailoverMethods[] = {
    {0, "Not Supported\n"},          {1, "TPGS - Implicit\n"},        {2, "TPGS - Explicit\n"},
    {3, "Mode Select - Implicit\n"}, {4, "Mode Select - Explicit\n"},
};

constexpr CodeText kTasBitStatuses[] = {
    {0, "Not set\n"}, {1, "Set\n"}, {2, "Set in progress\n"}, {3, "Conflict when setting\n"}, {4, "Not supported\n"},
};

constexpr CodeText kAlbStatuses[] = {{1, "Supported and NOT Active\n"}, {2, "Supported and Active\n"}};

constexpr CodeText kAccessStates[] = {
    {0, "Active/Optimized"}, {1, "Active/UnOptimized"}, {2, "Standby"},
    {3, "UnAvailable"},      {15, "Transitioning"},     {18, "Failed"},
};

const char* TextOf(std::span<const CodeText> texts, std::uint32_t code, const char* other) {
  for (const CodeText& entry : texts) {
    if (entry.code == code) {
      return entry.text;
    }
  }
  return other;
}

} // namespace

const char* ControllerPathStateText(std::uint8_t state) {
  return TextOf(kControllerPathStates, state, "Unknown");
}

const char* LunStateText(std::uint8_t state) {
  return TextOf(kLunStates, state, "Unknown");
}

const char* LoadBalancePolicyText(std::uint8_t policy) {
  return TextOf(kLoadBalancePolicies, policy, "Unknown");
}

const char* AccessStateText(std::uint8_t state) {
  return TextOf(kAccessStates, state, "Unknown");
}

const char* OnlineStateText(std::uint32_t internalState) {
  static constexpr const char* kByBit[] = {"Online        ", "Admin Offline ", "Offline       "};
  for (const char* text : kByBit) {
    if ((internalState & 1) != 0) {
      return text;
    }
    internalState >>= 1;
  }
  return "Unknown       ";
}

const char* FailoverMethodLine(std::uint8_t method) {
  return TextOf(kFailoverMethods, method, "unknown\n");
}

const char* TasBitStatusLine(std::uint32_t status) {
  return TextOf(kTasBitStatuses, status, "Unknown\n");
}

const char* AlbStatusLine(std::uint8_t status) {
  return TextOf(kAlbStatuses, status, "Not Supported\n");
}

const char* SerialNumberInScratch(const SerialNumberText& serialNumber) {
  std::memcpy(gCntrlSlNumber, serialNumber.data(), serialNumber.size());
  return reinterpret_cast<const char*>(gCntrlSlNumber);
}

} // namespace korvex
