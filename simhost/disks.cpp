#include "simhost/disks.h"

#include "platform/error.h"
#include "simhost/statistics.h"

#include <algorithm>
#include <utility>

namespace simhost {
namespace {

constexpr std::uint8_t kInquiry = 0x12;
constexpr std::uint8_t kVitalProductData = 0x01;
constexpr std::size_t kInquiryLength = 6;

constexpr std::uint8_t kCheckCondition = 2;
constexpr std::uint8_t kInvalidCommand = 0x20;
constexpr std::uint8_t kInvalidField = 0x24;

/// Refuses a command: an illegal request, with its additional sense code.
void Refuse(platform::ScsiAnswer& answer, std::uint8_t additionalSense) {
  answer.status = kCheckCondition;
  answer.sense.assign(18, 0);
  answer.sense[0] = 0x70;
  answer.sense[2] = 0x05;
  answer.sense[7] = 10;
  answer.sense[12] = additionalSense;
}

class SimulatedDrive : public platform::PhysicalDrivePort {
public:
  SimulatedDrive(std::shared_ptr<const std::vector<Disk>> disks, const Disk& disk)
      : m_disks(std::move(disks)), m_disk(disk) {}

  DWORD Execute(std::span<const std::uint8_t> command, std::size_t room, platform::ScsiAnswer& answer) override {
    Count();
    if (command.size() < kInquiryLength || command[0] != kInquiry) {
      Refuse(answer, kInvalidCommand);
      return ERROR_SUCCESS;
    }
    if (command[1] != kVitalProductData) {
      Refuse(answer, kInvalidField);
      return ERROR_SUCCESS;
    }
    const std::size_t allocation = command[3] * 256U + command[4];
    return Inquire(command[2], m_disk.ignoresAllocationLength ? room : std::min(allocation, room), answer);
  }

  DWORD Address(SCSI_ADDRESS& address, std::size_t& length) override {
    Count();
    address = m_disk.address;
    length = m_disk.addressLength;
    return m_disk.addressError;
  }

private:
  static void Count() { ++TheStatistics().calls[OperationIndex("DeviceIoControl")]; }

  DWORD Inquire(std::uint8_t page, std::size_t room, platform::ScsiAnswer& answer) const {
    const auto described = std::ranges::find(m_disk.inquiries, page, &DescribedInquiry::page);
    const bool isDescribed = described != m_disk.inquiries.end();
    if (isDescribed && described->error != 0) {
      return described->error;
    }
    auto bytes = isDescribed && described->bytes ? described->bytes : MakeInquiryPage(m_disk, page);
    if (!bytes) {
      Refuse(answer, kInvalidField);
      return ERROR_SUCCESS;
    }
    if (isDescribed) {
      bytes->resize(described->length.value_or(bytes->size()));
      answer.status = described->status;
    }
    bytes->resize(std::min(bytes->size(), room));
    answer.data = std::move(*bytes);
    return ERROR_SUCCESS;
  }

  std::shared_ptr<const std::vector<Disk>> m_disks; ///< keeps the next alive
  const Disk& m_disk;
};

} // namespace

std::shared_ptr<platform::PhysicalDrivePort> Disks::Drive(std::uint32_t number) const {
  ++TheStatistics().calls[OperationIndex("CreateFileW")];
  const auto found = std::ranges::find(*m_disks, number, &Disk::number);
  return found == m_disks->end() ? nullptr : std::make_shared<SimulatedDrive>(m_disks, *found);
}

} // namespace simhost
