#include "app/mpio/inquiry_pages.h"

#include "app/cli/console/bounded_text.h"

#include <algorithm>
#include <cstring>

namespace korvex {

namespace {

constexpr std::size_t kPageCountOffset = 3;
constexpr std::size_t kPageCodesOffset = 4;
constexpr std::size_t kMaxPageCodes = 32;
constexpr std::size_t kIdentifierLength = 16;
constexpr std::size_t kIdentificationIdentifierOffset = 8;
constexpr std::size_t kVendorIdentifierOffset = 12;
constexpr std::size_t kVolumeLabelOffset = 29;
constexpr std::size_t kArrayLabelOffset = 107;
/// Two bytes a character, the second of which counts.
constexpr std::size_t kLabelLength = 60;

/// Independent of the locale.
bool IsKept(char character) {
  const bool isAlphanumeric = (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
                              (character >= 'A' && character <= 'Z');
  return isAlphanumeric || std::strchr("#-._", character) != nullptr;
}

} // namespace

std::optional<std::uint8_t> SelectPage(const InquiryPage& supportedPages) {
  const std::size_t count = std::min<std::size_t>(supportedPages[kPageCountOffset], kMaxPageCodes);
  const auto codes = std::span(supportedPages).subspan(kPageCodesOffset, count);
  for (const std::uint8_t code : {kVendorPage, kIdentificationPage}) {
    if (std::ranges::find(codes, code) != codes.end()) {
      return code;
    }
  }
  return std::nullopt;
}

SerialText::SerialText(const InquiryPage& page, std::uint8_t pageCode) {
  const std::size_t offset = pageCode == kVendorPage ? kVendorIdentifierOffset : kIdentificationIdentifierOffset;
  for (std::size_t i = 0; i < kIdentifierLength; ++i) {
    BoundedFormat(m_digits + 2 * i, 3, "%02x", static_cast<unsigned>(page[offset + i]));
  }
}

LabelText::LabelText(std::span<const std::uint8_t> field) {
  for (std::size_t i = 0; 2 * i + 1 < field.size(); ++i) {
    const char character = static_cast<char>(field[2 * i + 1]);
    m_text[i] = IsKept(character) ? character : '_';
    if (character == '\0') {
      m_text[i] = '\0';
      return;
    }
  }
}

LabelText VolumeLabel(const InquiryPage& vendorPage) {
  return LabelText(std::span(vendorPage).subspan(kVolumeLabelOffset, kLabelLength));
}

LabelText ArrayLabel(const InquiryPage& vendorPage) {
  return LabelText(std::span(vendorPage).subspan(kArrayLabelOffset, kLabelLength));
}

} // namespace korvex
