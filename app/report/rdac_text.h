#pragma once

#include <cstdint>

// How the generation-1 report writes the values of a record.

namespace korvex {

constexpr char YesNo(bool isSet) {
  return isSet ? 'Y' : 'N';
}

/// 0 is controller A, 1 is B.
constexpr char ControllerLetter(std::uint32_t index) {
  return static_cast<char>('A' + index);
}

/// A short text made for one line.
class ReportText {
public:
  const char* c_str() const { return m_text; }

private:
  friend ReportText HandleText(std::uint64_t handle);
  friend ReportText FirmwareText(std::uint32_t version);
  friend ReportText TimeText(std::uint32_t seconds);
  friend ReportText PathAddressText(std::uint8_t port, std::uint8_t path, std::uint8_t target);

  char m_text[24] = {};
};

/// An opaque handle as the platform writes a pointer, behind "0x"; "0x0" for none.
ReportText HandleText(std::uint64_t handle);
/// The four bytes of a version, lowest first.
ReportText FirmwareText(std::uint32_t version);
/// The time of day of a time stamp, or a duration below one day.
ReportText TimeText(std::uint32_t seconds);
ReportText PathAddressText(std::uint8_t port, std::uint8_t path, std::uint8_t target);

/// The name of a generation-1 load-balance policy, or none.
const char* RdacPolicyName(std::uint32_t policy);
/// The name of a path's or a drive's state.
const char* RdacStateName(std::uint32_t state);

} // namespace korvex
