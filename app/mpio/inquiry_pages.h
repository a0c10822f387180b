#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

// The vital product data pages that a disk gives for its INQUIRY commands, as far as they tell array, volume and
// identifier. A page is what the disk sent, with zeros behind it.

namespace korvex {

/// Room for one page.
using InquiryPage = std::array<std::uint8_t, 256>;

inline constexpr std::uint8_t kIdentificationPage = 0x83;
inline constexpr std::uint8_t kVendorPage = 0xC8;

/// Which of the two pages a disk is asked for, from its list of supported pages: the vendor's wherever it stands, else
/// the identification page; none when neither is among the first 32.
std::optional<std::uint8_t> SelectPage(const InquiryPage& supportedPages);

/// The volume identifier as 32 lower-case hexadecimal digits.
class SerialText {
public:
  /// `page` is what the disk gave for `pageCode`, one of the two pages.
  SerialText(const InquiryPage& page, std::uint8_t pageCode);
  const char* c_str() const { return m_digits; }

private:
  char m_digits[33];
};

/// A label of the vendor page: at most 30 characters, "_" in place of those that are no letter, digit, "#", "-" or ".".
class LabelText {
public:
  const char* c_str() const { return m_text; }

private:
  friend LabelText VolumeLabel(const InquiryPage& vendorPage);
  friend LabelText ArrayLabel(const InquiryPage& vendorPage);
  explicit LabelText(std::span<const std::uint8_t> field);

  char m_text[31] = {};
};
LabelText VolumeLabel(const InquiryPage& vendorPage);
LabelText ArrayLabel(const InquiryPage& vendorPage);

} // namespace korvex
