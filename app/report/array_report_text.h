#pragma once

#include "app/inventory/gen2_records.h"

#include <cstdint>

// How the generation-2 report writes the codes of the records: static texts; every code has one.

namespace korvex {

const char* ControllerPathStateText(std::uint8_t state);
const char* LunStateText(std::uint8_t state);
const char* LoadBalancePolicyText(std::uint8_t policy);
/// The asymmetric access state of a path.
const char* AccessStateText(std::uint8_t state);
/// 14 characters; the lowest bit that is set counts.
const char* OnlineStateText(std::uint32_t internalState);

/// Texts that end their line.
const char* FailoverMethodLine(std::uint8_t method);
const char* TasBitStatusLine(std::uint32_t status);
const char* AlbStatusLine(std::uint8_t status);

/// 'N', 'Y', or '?' for a byte that is neither 0 nor 1.
constexpr char YesNoLetter(std::uint8_t flag) {
  if (flag == 0) {
    return 'N';
  }
  return flag == 1 ? 'Y' : '?';
}

/// 0 is controller A, everything else B.
constexpr char DesignationLetter(std::uint8_t designation) {
  return designation == 0 ? 'A' : 'B';
}

/// A controller's serial number as text, in gCntrlSlNumber until the next one.
const char* SerialNumberInScratch(const SerialNumberText& serialNumber);

} // namespace korvex
