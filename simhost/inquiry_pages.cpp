#include "simhost/disks.h"

#include <algorithm>

// The vital product data pages of a disk.

namespace simhost {
namespace {

using Page = std::vector<std::uint8_t>;

constexpr std::size_t kHeaderLength = 4;
constexpr std::size_t kVendorLength = 176;
constexpr std::size_t kVendorIdentifierOffset = 12;
constexpr std::size_t kVolumeLabelOffset = 29;
constexpr std::size_t kArrayLabelOffset = 107;
constexpr std::size_t kLabelUnits = 30;

/// A page of that many bytes with its header.
Page MakePage(std::uint8_t code, std::size_t length) {
  Page page(length);
  page[1] = code;
  page[3] = static_cast<std::uint8_t>(length - kHeaderLength);
  return page;
}

Page SupportedPages(const Disk& disk) {
  Page page = MakePage(kSupportedPages, kHeaderLength);
  page[3] = disk.announcedPages;
  page.insert(page.end(), disk.pages.begin(), disk.pages.end());
  return page;
}

/// One designation descriptor: binary, an NAA identifier.
Page Identification(const Disk& disk) {
  constexpr std::size_t kDescriptorLength = 4;
  constexpr std::uint8_t kBinary = 1;
  constexpr std::uint8_t kNaa = 3;
  Page page = MakePage(kIdentificationPage, kHeaderLength + kDescriptorLength + disk.identifier.size());
  page[kHeaderLength] = kBinary;
  page[kHeaderLength + 1] = kNaa;
  page[kHeaderLength + 3] = static_cast<std::uint8_t>(disk.identifier.size());
  std::ranges::copy(disk.identifier, page.begin() + kHeaderLength + kDescriptorLength);
  return page;
}

/// Each unit with its high byte first, and zeros behind the last.
void PutLabel(Page& page, std::size_t offset, const std::wstring& label) {
  for (std::size_t i = 0; i < std::min(label.size(), kLabelUnits); ++i) {
    page[offset + 2 * i] = static_cast<std::uint8_t>(label[i] >> 8);
    page[offset + 2 * i + 1] = static_cast<std::uint8_t>(label[i] & 0xFF);
  }
}

Page Vendor(const Disk& disk) {
  Page page = MakePage(kVendorPage, kVendorLength);
  std::ranges::copy(disk.identifier, page.begin() + kVendorIdentifierOffset);
  PutLabel(page, kVolumeLabelOffset, disk.volumeLabel);
  PutLabel(page, kArrayLabelOffset, disk.arrayLabel);
  return page;
}

} // namespace

std::optional<std::vector<std::uint8_t>> MakeInquiryPage(const Disk& disk, std::uint8_t page) {
  if (page == kSupportedPages) {
    return SupportedPages(disk);
  }
  if (std::ranges::find(disk.pages, page) == disk.pages.end()) {
    return std::nullopt;
  }
  switch (page) {
  case kIdentificationPage:
    return Identification(disk);
  case kVendorPage:
    return Vendor(disk);
  default:
    return MakePage(page, kHeaderLength);
  }
}

} // namespace simhost
