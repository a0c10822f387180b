#include "app/mpio/physical_drive.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/trace.h"
#include "platform/error.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace korvex {

namespace {

/// Bytes of a page that are asked for.
constexpr std::uint8_t kSupportedPagesLength = 36;
constexpr std::uint8_t kIdentificationLength = 28;
constexpr std::uint8_t kVendorLength = 176;

constexpr std::uint8_t kCommandLength = 6;
constexpr std::uint8_t kSenseLength = 18;
constexpr std::uint8_t kFromDevice = 1;
constexpr ULONG kTimeOutSeconds = 60;

/// The request with room for sense data right behind it.
struct alignas(SCSI_PASS_THROUGH_DIRECT) PassThroughBuffer {
  unsigned char bytes[512] = {};
};

/// Where the adapter puts a page, aligned as any adapter asks for it.
struct alignas(512) TransferBuffer {
  InquiryPage page = {};
};

} // namespace

PhysicalDrive::PhysicalDrive(std::uint32_t number) {
  BoundedWideFormat(m_path, sizeof m_path, "\\\\.\\PHYSICALDRIVE%d", static_cast<int>(number));
  m_handle = CreateFileW(m_path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

PhysicalDrive::~PhysicalDrive() {
  if (IsOpen()) {
    CloseHandle(m_handle);
  }
}

bool PhysicalDrive::Inquire(std::uint8_t pageCode, std::uint8_t allocationLength, InquiryPage& page) {
  TransferBuffer transfer;
  SCSI_PASS_THROUGH_DIRECT request = {};
  request.Length = sizeof request;
  request.CdbLength = kCommandLength;
  request.SenseInfoLength = kSenseLength;
  request.DataIn = kFromDevice;
  request.DataTransferLength = static_cast<ULONG>(transfer.page.size());
  request.TimeOutValue = kTimeOutSeconds;
  request.DataBuffer = transfer.page.data();
  request.SenseInfoOffset = sizeof request;
  const std::uint8_t command[kCommandLength] = {0x12, 0x01, pageCode, 0x00, allocationLength, 0x00};
  std::copy_n(command, kCommandLength, request.Cdb);

  PassThroughBuffer buffer;
  std::memcpy(buffer.bytes, &request, sizeof request);
  DWORD returned = 0;
  const BOOL isSent = DeviceIoControl(m_handle, IOCTL_SCSI_PASS_THROUGH_DIRECT, buffer.bytes, sizeof buffer.bytes,
                                      buffer.bytes, sizeof buffer.bytes, &returned, nullptr);
  std::memcpy(&request, buffer.bytes, sizeof request);
  if (isSent == FALSE || request.ScsiStatus != 0) {
    TracePrint("PassThrough request failed.  Error - 0x%x\n", static_cast<unsigned>(GetLastError()));
    return false;
  }
  page = transfer.page;
  return true;
}

bool PhysicalDrive::InquireSupportedPages(InquiryPage& page) {
  return Inquire(0x00, kSupportedPagesLength, page);
}

bool PhysicalDrive::InquirePage(std::uint8_t pageCode, InquiryPage& page) {
  return Inquire(pageCode, pageCode == kVendorPage ? kVendorLength : kIdentificationLength, page);
}

std::optional<std::uint8_t> PhysicalDrive::Lun() {
  SCSI_ADDRESS address = {};
  DWORD returned = 0;
  const BOOL isTold =
      DeviceIoControl(m_handle, IOCTL_SCSI_GET_ADDRESS, nullptr, 0, &address, sizeof address, &returned, nullptr);
  return isTold != FALSE && returned > offsetof(SCSI_ADDRESS, Lun) ? std::optional(address.Lun) : std::nullopt;
}

} // namespace korvex
