#include "simhost/disks.h"
#include "simhost/host_sections.h"
#include "simhost/operations.h"

#include <algorithm>
#include <limits>

// Reading "disks".

namespace simhost {
namespace {

constexpr std::size_t kMostDisks = 4096;
constexpr std::uint64_t kMostNumber = 99'999;
constexpr std::size_t kMostLabelUnits = 4096;
constexpr std::size_t kIdentifierLength = 16;
constexpr std::size_t kMostPages = 65'536;
constexpr std::size_t kMostPageBytes = 65'536;

constexpr CodeName kPages[] = {
    {"supported", kSupportedPages}, {"identification", kIdentificationPage}, {"vendor", kVendorPage}};
constexpr CodeName kStatuses[] = {
    {"good", 0x00}, {"check condition", 0x02}, {"busy", 0x08}, {"reservation conflict", 0x18}, {"task set full", 0x28}};

std::uint32_t ReadError(const Node& error) {
  return error.Code<std::uint32_t>(CodeWords(CodeFamily::kWin32), UINT32_MAX, 0);
}

/// One that other disks do not have.
std::vector<std::uint8_t> OwnIdentifier(std::uint32_t number) {
  std::vector<std::uint8_t> identifier(kIdentifierLength);
  identifier[0] = 0x60;
  for (std::size_t i = 0; i < sizeof number; ++i) {
    identifier[kIdentifierLength - 1 - i] = static_cast<std::uint8_t>(number >> (8 * i));
  }
  return identifier;
}

std::vector<std::uint8_t> ReadIdentifier(const Node& identifier, std::uint32_t number) {
  if (identifier.IsAbsent()) {
    return OwnIdentifier(number);
  }
  std::vector<std::uint8_t> bytes = identifier.Bytes(kIdentifierLength);
  if (bytes.size() != kIdentifierLength) {
    identifier.Refuse("16 bytes");
  }
  return bytes;
}

std::vector<std::uint8_t> ReadPages(const Node& pages) {
  if (pages.IsAbsent()) {
    return {kSupportedPages, kIdentificationPage, kVendorPage};
  }
  std::vector<std::uint8_t> codes;
  for (const Node& page : pages.Elements(kMostPages)) {
    codes.push_back(page.Code<std::uint8_t>(kPages, 255));
  }
  return codes;
}

DescribedInquiry ReadInquiry(const Node& inquiry) {
  DescribedInquiry described;
  ReadMembers(inquiry, [&](Members& keys) {
    described.page = keys["page"].Code<std::uint8_t>(kPages, 255);
    if (const Node bytes = keys["bytes"]; !bytes.IsAbsent()) {
      described.bytes = bytes.Bytes(kMostPageBytes);
    }
    if (const Node length = keys["length"]; !length.IsAbsent()) {
      described.length = length.Unsigned<std::size_t>(0, kMostPageBytes);
    }
    described.status = keys["status"].Code<std::uint8_t>(kStatuses, 255, 0);
    described.error = ReadError(keys["error"]);
  });
  return described;
}

void ReadAddress(const Node& address, Disk& disk) {
  disk.address = {sizeof disk.address, 0, 0, 0, disk.address.Lun};
  if (address.IsNull()) {
    disk.addressError = ERROR_INVALID_FUNCTION;
    return;
  }
  ReadMembers(address, [&disk](Members& keys) {
    const auto readByte = [&keys](std::string_view key, BYTE fallback) {
      return keys[key].Unsigned<BYTE>(0, 255, fallback);
    };
    disk.address.PortNumber = readByte("port", 0);
    disk.address.PathId = readByte("path", 0);
    disk.address.TargetId = readByte("target", 0);
    disk.address.Lun = readByte("lun", disk.address.Lun);
    disk.addressLength = keys["length"].Unsigned<std::size_t>(0, sizeof disk.address, sizeof disk.address);
    disk.addressError = ReadError(keys["error"]);
  });
}

Disk ReadDisk(const Node& node, std::size_t place) {
  Disk disk;
  ReadMembers(node, [&](Members& keys) {
    disk.number = keys["number"].Unsigned<std::uint32_t>(0, kMostNumber, static_cast<std::uint32_t>(place));
    disk.arrayLabel = keys["array"].Text(kMostLabelUnits, L"array-0");
    disk.volumeLabel = keys["volume"].Text(kMostLabelUnits, L"volume-" + std::to_wstring(disk.number));
    disk.identifier = ReadIdentifier(keys["identifier"], disk.number);
    disk.address.Lun = keys["lun"].Unsigned<BYTE>(0, 255, static_cast<BYTE>(place));
    disk.pages = ReadPages(keys["pages"]);
    const auto pages = static_cast<std::uint8_t>(std::min<std::size_t>(disk.pages.size(), 255));
    disk.announcedPages = keys["announcedPages"].Unsigned<std::uint8_t>(0, 255, pages);
    for (const Node& inquiry : keys["inquiries"].Elements(256)) {
      disk.inquiries.push_back(ReadInquiry(inquiry));
    }
    disk.ignoresAllocationLength = keys["ignoresAllocationLength"].Flag(false);
    ReadAddress(keys["address"], disk);
  });
  return disk;
}

} // namespace

void BuildDisks(const Node& disks, Host& host) {
  std::vector<Disk> models;
  for (const Node& disk : disks.Elements(kMostDisks)) {
    models.push_back(ReadDisk(disk, models.size()));
  }
  host.disks = Disks(std::move(models));
}

} // namespace simhost
