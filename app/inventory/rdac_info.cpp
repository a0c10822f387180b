#include "app/inventory/rdac_info.h"

#include <algorithm>

namespace korvex {

namespace {

/// Every section begins where any of the records may stand.
constexpr std::size_t kAlignment = alignof(std::uint64_t);

template <class Record>
constexpr std::size_t RoomOf() {
  return (sizeof(Record) + kAlignment - 1) / kAlignment * kAlignment;
}

constexpr std::size_t ControllerRoom(std::size_t maxPaths) {
  return RoomOf<RdacController>() + maxPaths * RoomOf<RdacPath>();
}

constexpr std::size_t DriveInfoRoom(std::size_t maxPaths) {
  return RoomOf<RdacDriveInfo>() + maxPaths * RoomOf<RdacDrive>();
}

/// Bytes of a record, at most one more than a store may have: limits of 32 bits make sizes that 64 bits do not hold.
std::uint64_t RecordSize(std::uint64_t maxLuns, std::uint64_t maxPaths) {
  const std::uint64_t lunRoom = RoomOf<RdacLun>() + RdacInfo::kControllers * DriveInfoRoom(maxPaths);
  const std::uint64_t fixedRoom = RoomOf<RdacModule>() + RdacInfo::kControllers * ControllerRoom(maxPaths);
  const std::uint64_t cap = platform::kAllocationCap;
  if (fixedRoom > cap || maxLuns > (cap - fixedRoom) / lunRoom) {
    return cap + 1;
  }
  return fixedRoom + maxLuns * lunRoom;
}

} // namespace

bool RdacLun::HasWwn() const {
  return std::ranges::any_of(WWN, [](std::uint8_t byte) { return byte != 0; });
}

bool RdacInfo::Allocate(std::uint32_t maxLuns, std::uint32_t maxPaths) {
  const std::uint64_t size = RecordSize(maxLuns, maxPaths);
  m_store = MakeStore("RdacInfo", size);
  if (m_store == nullptr) {
    return false;
  }
  m_size = static_cast<std::uint32_t>(size);
  m_maxLuns = maxLuns;
  m_maxPaths = maxPaths;
  return true;
}

void RdacInfo::Release() {
  m_store.reset();
}

void RdacInfo::Clear() {
  std::fill_n(m_store.get(), m_size, static_cast<unsigned char>(0));
}

std::size_t RdacInfo::ControllerOffset(std::uint32_t controller) const {
  return RoomOf<RdacModule>() + m_maxLuns * RoomOf<RdacLun>() + controller * ControllerRoom(m_maxPaths);
}

std::size_t RdacInfo::DriveInfoOffset(std::uint32_t lun, std::uint32_t controller) const {
  const std::size_t block = std::size_t{lun} * kControllers + controller;
  return ControllerOffset(kControllers) + block * DriveInfoRoom(m_maxPaths);
}

RdacLun* RdacInfo::Lun(std::uint32_t lun) {
  return lun < m_maxLuns ? static_cast<RdacLun*>(At(RoomOf<RdacModule>() + lun * RoomOf<RdacLun>())) : nullptr;
}

RdacController* RdacInfo::Controller(std::uint32_t controller) {
  return controller < kControllers ? static_cast<RdacController*>(At(ControllerOffset(controller))) : nullptr;
}

RdacPath* RdacInfo::Path(std::uint32_t controller, std::uint32_t path) {
  if (controller >= kControllers || path >= m_maxPaths) {
    return nullptr;
  }
  return static_cast<RdacPath*>(
      At(ControllerOffset(controller) + RoomOf<RdacController>() + path * RoomOf<RdacPath>()));
}

RdacDriveInfo* RdacInfo::DriveInfo(std::uint32_t lun, std::uint32_t controller) {
  if (lun >= m_maxLuns || controller >= kControllers) {
    return nullptr;
  }
  return static_cast<RdacDriveInfo*>(At(DriveInfoOffset(lun, controller)));
}

RdacDrive* RdacInfo::Drive(std::uint32_t lun, std::uint32_t controller, std::uint32_t path) {
  if (lun >= m_maxLuns || controller >= kControllers || path >= m_maxPaths) {
    return nullptr;
  }
  return static_cast<RdacDrive*>(
      At(DriveInfoOffset(lun, controller) + RoomOf<RdacDriveInfo>() + path * RoomOf<RdacDrive>()));
}

} // namespace korvex
