#pragma once

#include "platform/posix/machine.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The machine's disks: what they tell about themselves when they are asked through SCSI.

namespace simhost {

/// What is described of one inquiry: the rest is as the disk would answer.
struct DescribedInquiry {
  std::uint8_t page = 0;
  std::optional<std::vector<std::uint8_t>> bytes;
  std::optional<std::size_t> length; ///< of the answer, which is cut or filled up with zeros
  std::uint8_t status = 0;           ///< SCSI status
  std::uint32_t error = 0;           ///< the request fails with this system error code
};

struct Disk {
  std::uint32_t number = 0;
  std::wstring arrayLabel;
  std::wstring volumeLabel;
  std::vector<std::uint8_t> identifier; ///< 16 bytes
  std::vector<std::uint8_t> pages;      ///< supported ones, in the order in which they are listed
  std::uint8_t announcedPages = 0;
  std::vector<DescribedInquiry> inquiries;
  bool ignoresAllocationLength = false; ///< an answer is as long as the transfer takes
  SCSI_ADDRESS address = {};
  std::size_t addressLength = sizeof(SCSI_ADDRESS); ///< how much of it is told
  std::uint32_t addressError = 0;
};

class Disks {
public:
  Disks() = default;
  explicit Disks(std::vector<Disk> disks) : m_disks(std::make_shared<const std::vector<Disk>>(std::move(disks))) {}

  const std::vector<Disk>& All() const { return *m_disks; }
  /// The disk of that number as the platform sees it, or none.
  std::shared_ptr<platform::PhysicalDrivePort> Drive(std::uint32_t number) const;

private:
  std::shared_ptr<const std::vector<Disk>> m_disks = std::make_shared<const std::vector<Disk>>();
};

/// The page as the disk makes it from what an administrator knows of it; none for a page that it does not have.
std::optional<std::vector<std::uint8_t>> MakeInquiryPage(const Disk& disk, std::uint8_t page);

inline constexpr std::uint8_t kSupportedPages = 0x00;
inline constexpr std::uint8_t kIdentificationPage = 0x83;
inline constexpr std::uint8_t kVendorPage = 0xC8;

} // namespace simhost
