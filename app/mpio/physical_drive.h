#pragma once

#include "app/mpio/inquiry_pages.h"
#include "platform/devices.h"
#include "platform/handles.h"

#include <cstdint>
#include <optional>

namespace korvex {

/// One physical drive of the machine, opened for SCSI commands and closed at the end of its life.
class PhysicalDrive {
public:
  explicit PhysicalDrive(std::uint32_t number);
  ~PhysicalDrive();
  PhysicalDrive(const PhysicalDrive&) = delete;
  PhysicalDrive& operator=(const PhysicalDrive&) = delete;

  bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
  /// The device path, for example "\\.\PHYSICALDRIVE3".
  const wchar_t* Path() const { return m_path; }
  /// Which pages the drive supports, and one of the two that tell what it is; false after a trace line, with `page`
  /// left as it was.
  bool InquireSupportedPages(InquiryPage& page);
  bool InquirePage(std::uint8_t pageCode, InquiryPage& page);
  /// The LUN of its SCSI address; none when the drive does not tell.
  std::optional<std::uint8_t> Lun();

private:
  bool Inquire(std::uint8_t pageCode, std::uint8_t allocationLength, InquiryPage& page);

  wchar_t m_path[50];
  HANDLE m_handle;
};

} // namespace korvex
