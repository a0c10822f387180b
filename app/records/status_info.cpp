#include "app/records/status_info.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"

#include <algorithm>
#include <cstring>

namespace korvex {

namespace {

constexpr const char* kStateNames[] = {"Missing", "Active", "Offline", "Service-Mode", "Reset", "Unknown"};
static_assert(std::size(kStateNames) == kControllerStates);

constexpr std::size_t kStatesOffset = 34;
constexpr std::size_t kIndexOffset = 44;
constexpr std::size_t kSlotsOffset = 56;
constexpr std::size_t kSlotSize = 16;
constexpr std::size_t kPathSize = 8;
constexpr std::size_t kPathStateOffset = 4;

/// Bytes of a record, or one more than a store may have: limits of 32 bits make sizes that 64 bits do not hold.
std::uint64_t RecordSize(std::uint64_t maxLuns, std::uint64_t maxPaths) {
  const std::uint64_t cap = platform::kAllocationCap;
  const std::uint64_t lunRoom = kSlotSize * (maxPaths + 1);
  return maxLuns > (cap - kSlotsOffset) / lunRoom ? cap + 1 : kSlotsOffset + maxLuns * lunRoom;
}

} // namespace

const char* ControllerStateName(std::uint8_t code) {
  const bool isKnown = code >= kFirstControllerState && code < kFirstControllerState + kControllerStates;
  return isKnown ? kStateNames[code - kFirstControllerState] : "";
}

bool UtilStatusInfo::Allocate(std::uint32_t maxLuns, std::uint32_t maxPaths) {
  const std::uint64_t size = RecordSize(maxLuns, maxPaths);
  m_bytes = MakeStore("UtilStatusInfo", size);
  if (m_bytes == nullptr) {
    return false;
  }
  m_size = static_cast<std::uint32_t>(size);
  m_maxLuns = maxLuns;
  m_maxPaths = maxPaths;
  MakeFresh();
  return true;
}

void UtilStatusInfo::MakeFresh() {
  // All bits set mean no status, an empty slot and no path.
  std::fill_n(m_bytes.get(), m_size, static_cast<unsigned char>(0xFF));
  std::ranges::fill(Name(), static_cast<unsigned char>(0));
  for (std::uint32_t controller = 0; controller < kControllers; ++controller) {
    SetControllerState(controller, kControllerUnknown);
  }
}

void UtilStatusInfo::TakeImage(const unsigned char* image) {
  std::copy_n(image, m_size, m_bytes.get());
  for (std::uint32_t slot = 0; slot < m_maxLuns; ++slot) {
    if (LunNumber(slot) != slot) {
      SetLunNumber(slot, kEmptySlot);
    }
  }
}

std::uint8_t UtilStatusInfo::ControllerState(std::uint32_t controller) const {
  return m_bytes[kStatesOffset + controller];
}

void UtilStatusInfo::SetControllerState(std::uint32_t controller, std::uint8_t code) {
  m_bytes[kStatesOffset + controller] = code;
}

std::int32_t UtilStatusInfo::ArrayIndex() const {
  std::int32_t index = 0;
  std::memcpy(&index, &m_bytes[kIndexOffset], sizeof index);
  return index;
}

void UtilStatusInfo::SetArrayIndex(std::int32_t index) {
  std::memcpy(&m_bytes[kIndexOffset], &index, sizeof index);
}

std::uint32_t UtilStatusInfo::LunNumber(std::uint32_t slot) const {
  std::uint32_t number = 0;
  std::memcpy(&number, &m_bytes[SlotOffset(slot)], sizeof number);
  return number;
}

void UtilStatusInfo::SetLunNumber(std::uint32_t slot, std::uint32_t number) {
  std::memcpy(&m_bytes[SlotOffset(slot)], &number, sizeof number);
}

StatusPath UtilStatusInfo::Path(std::uint32_t slot, std::uint32_t controller, std::uint32_t index) const {
  const unsigned char* bytes = &m_bytes[PathOffset(slot, controller, index)];
  StatusPath path{bytes[0], bytes[1], bytes[2], 0};
  std::memcpy(&path.state, bytes + kPathStateOffset, sizeof path.state);
  return path;
}

void UtilStatusInfo::SetPath(std::uint32_t slot, std::uint32_t controller, std::uint32_t index,
                             const StatusPath& path) {
  unsigned char* bytes = &m_bytes[PathOffset(slot, controller, index)];
  bytes[0] = path.port;
  bytes[1] = path.path;
  bytes[2] = path.target;
  std::memcpy(bytes + kPathStateOffset, &path.state, sizeof path.state);
}

std::size_t UtilStatusInfo::SlotOffset(std::uint32_t slot) const {
  return kSlotsOffset + kSlotSize * slot;
}

std::size_t UtilStatusInfo::PathOffset(std::uint32_t slot, std::uint32_t controller, std::uint32_t index) const {
  const std::size_t table = std::size_t{kControllers} * m_maxPaths * slot + std::size_t{m_maxPaths} * controller;
  return SlotOffset(m_maxLuns) + kPathSize * (table + index);
}

bool AllocateStatusInfo(UtilStatusInfo& record, std::uint32_t maxLuns, std::uint32_t maxPaths) {
  if (!record.Allocate(maxLuns, maxPaths)) {
    PrintError("Unable to malloc memory for UtilStatusInfo - %s!\n", RuntimeErrorText());
    return false;
  }
  return true;
}

} // namespace korvex
