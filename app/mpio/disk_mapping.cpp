#include "app/mpio/disk_mapping.h"

#include "app/channel/channel.h"
#include "app/channel/dsm_name.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/mpio/physical_drive.h"
#include "platform/allocation.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/trace_text.h"

#include <memory>
#include <optional>

namespace korvex {

namespace {

constexpr std::uint32_t kDriveNumbers = 256;

/// A text of the framework: at most 64 bytes; empty when it cannot be read.
struct FrameworkText {
  FrameworkText(OrbWmiEnumerator& drive, const wchar_t* name) {
    if (drive.GetProperty(name, text, sizeof text) != kWmiSuccess) {
      text[0] = '\0';
    }
    text[sizeof text - 1] = '\0';
  }
  char text[65];
};

/// What the walk over the framework's drives works with, each made when its turn comes.
struct FrameworkDrives {
  struct EnumeratorRelease {
    void operator()(OrbWmiEnumerator* enumerator) const noexcept { platform::DeleteObject(enumerator); }
  };
  std::optional<OrbWmiClass> driveClass;
  std::optional<OrbWmiEnumerator> disks;
  std::unique_ptr<OrbWmiEnumerator, EnumeratorRelease> drives;
};

/// False after a trace line.
bool Open(FrameworkDrives& framework) {
  OrbWmiConnection& connection = gDsmChannel->connection;
  if (gDsmChannel->methodsClass.Initialize(connection, L"MPIO_DISK_INFO") != kWmiSuccess) {
    TracePrint("Unable to initialize MPIO_DISK_INFO class\n");
    return false;
  }
  if (framework.driveClass.emplace().Initialize(connection, L"MPIO_DRIVE_INFO") != kWmiSuccess) {
    TracePrint("Unable to initialize MPIO_DRIVE_INFO class\n");
    return false;
  }
  if (framework.disks.emplace().Initialize(&gDsmChannel->methodsClass) != kWmiSuccess) {
    TracePrint("Unable to initialize MPIO_DISK_INFO enumerator\n");
    return false;
  }
  OrbWmiEnumerator* drives = nullptr;
  const wmiReturn status = framework.disks->InitArrayEnumerator(&*framework.driveClass, L"DriveInfo", &drives);
  framework.drives.reset(drives);
  if (status != kWmiSuccess || drives == nullptr) {
    TracePrint("Unable to initialize MPIO_DRIVE_INFO enumerator\n");
    return false;
  }
  return true;
}

/// Stands on the framework's drive with this serial number; false when it knows none.
bool FindDrive(OrbWmiEnumerator& drives, const char* serial) {
  for (std::int32_t i = 0; drives.GetElement(i) == kWmiSuccess; ++i) {
    if (EqualIgnoringCase(FrameworkText(drives, L"SerialNumber").text, serial)) {
      return true;
    }
  }
  return false;
}

std::uint32_t PathCount(OrbWmiEnumerator& drive) {
  std::uint32_t count = 0;
  return drive.GetProperty(L"NumberPaths", &count, sizeof count) == kWmiSuccess ? count : 0;
}

/// The rest of the line, from the identification page.
void PrintIdentification(OrbWmiEnumerator& drive, std::optional<std::uint8_t> lun, const char* serial) {
  TracePrint("Page 0x80 info found\n");
  const FrameworkText dsmName(drive, L"DSMName");
  const auto paths = static_cast<unsigned>(PathCount(drive));
  if (lun) {
    Print("[Lun %d, Serial Number <%s>][Physical Paths <%u>, DSM Driver <%s>]\n", static_cast<int>(*lun), serial, paths,
          dsmName.text);
  } else {
    Print("[Lun N/A, Serial Number <%s>][Physical Paths <%u>, DSM Driver <%s>]\n", serial, paths, dsmName.text);
  }
}

/// The rest of the line, from the vendor page.
void PrintVendor(OrbWmiEnumerator& drive, std::optional<std::uint8_t> lun, const char* serial,
                 const InquiryPage& page) {
  TracePrint("Page 0x83 info found\n");
  Print("[Storage Array %s, ", ArrayLabel(page).c_str());
  Print("Volume %s, ", VolumeLabel(page).c_str());
  if (lun) {
    Print("Lun %d, ", static_cast<int>(*lun));
  } else {
    Print("Lun N/A, ");
  }
  Print("Serial Number <%s>]", serial);
  const FrameworkText dsmName(drive, L"DSMName");
  Print("[Physical Paths <%u>, DSM Driver <%s>]\n", static_cast<unsigned>(PathCount(drive)), dsmName.text);
}

void ShowDrive(std::uint32_t number, OrbWmiEnumerator& drives) {
  PhysicalDrive disk(number);
  if (!disk.IsOpen()) {
    return;
  }
  InquiryPage page;
  if (!disk.InquireSupportedPages(page)) {
    return;
  }
  const std::optional<std::uint8_t> pageCode = SelectPage(page);
  if (!pageCode || !disk.InquirePage(*pageCode, page)) {
    return;
  }
  const SerialText serial(page, *pageCode);
  if (!FindDrive(drives, serial.c_str())) {
    return;
  }
  Print("%-21s ", NarrowText(disk.Path()).c_str());
  Print("%-13s ", FrameworkText(drives, L"Name").text);
  const std::optional<std::uint8_t> lun = disk.Lun();
  if (*pageCode == kVendorPage) {
    PrintVendor(drives, lun, serial.c_str(), page);
  } else {
    PrintIdentification(drives, lun, serial.c_str());
  }
}

} // namespace

int ShowMpioMappings() {
  FrameworkDrives framework;
  if (gDsmChannel->connection.Initialize(L"root\\WMI") == kWmiSuccess) {
    TracePrint("Opened local connection\n");
    if (Open(framework)) {
      for (std::uint32_t number = 0; number < kDriveNumbers; ++number) {
        ShowDrive(number, *framework.drives);
      }
    }
  }
  gDsmChannel->connection.CloseConnection();
  return 0;
}

} // namespace korvex
