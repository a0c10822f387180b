#include "simhost/array_records.h"

#include <algorithm>
#include <string_view>

namespace simhost {
namespace {

/// A record under construction; what does not fit its field or the record is cut.
class RecordWriter {
public:
  explicit RecordWriter(std::size_t size) : m_bytes(size) {}

  /// The lowest `width` bytes of a number, lowest first.
  void Number(std::size_t offset, std::size_t width, std::uint64_t value) {
    for (std::size_t byte = 0; byte < width && offset + byte < m_bytes.size(); ++byte) {
      m_bytes[offset + byte] = static_cast<std::uint8_t>(value >> (8 * byte));
    }
  }
  void Byte(std::size_t offset, std::uint8_t value) { Number(offset, 1, value); }

  /// Characters of a field without terminator.
  void Text(std::size_t offset, std::size_t width, std::string_view text) {
    for (std::size_t index = 0; index < std::min(width, text.size()); ++index) {
      Byte(offset + index, static_cast<std::uint8_t>(text[index]));
    }
  }
  /// UTF-16 units, lowest byte first.
  void Units(std::size_t offset, std::size_t width, std::wstring_view text) {
    for (std::size_t index = 0; index < std::min(width / 2, text.size()); ++index) {
      Number(offset + 2 * index, 2, static_cast<std::uint64_t>(text[index]));
    }
  }

  std::vector<std::uint8_t> Take() { return std::move(m_bytes); }

private:
  std::vector<std::uint8_t> m_bytes;
};

constexpr std::size_t kControllerPathsOffset = 32;
constexpr std::size_t kControllerPathSize = 228;
constexpr std::size_t kLunPathsOffset = 142;
constexpr std::size_t kLunPathSize = 62;

void WriteControllerPath(RecordWriter& record, std::size_t at, const ControllerPathModel& path) {
  record.Byte(at, path.congestion ? path.congestion->present : 0);
  record.Byte(at + 1, path.state);
  record.Byte(at + 2, path.interfaceType);
  if (path.congestion) {
    record.Number(at + 4, 4, path.congestion->start);
    record.Number(at + 8, 4, path.congestion->intervals);
    record.Number(at + 12, 4, path.congestion->ioExceeded);
    record.Number(at + 16, 4, path.congestion->population);
    record.Number(at + 20, 4, path.congestion->averageResponse);
    record.Number(at + 24, 4, path.congestion->totalResponse);
  }
  record.Number(at + 28, 8, path.id);
  record.Number(at + 36, 4, path.extension);
}

/// Active and optimized through the owner, not optimized through the other controller.
std::uint8_t AccessState(const LunPathModel& path, std::uint8_t owner) {
  return path.state.value_or(path.controller == owner ? 0 : 1);
}

void WriteLunPath(RecordWriter& record, std::size_t at, const LunPathModel& path, const LunModel& lun,
                  std::uint8_t owner) {
  const std::uint8_t state = AccessState(path, owner);
  record.Number(at, 8, path.id);
  record.Number(at + 8, 4, path.extension);
  record.Byte(at + 12, state);
  record.Number(at + 13, 8, path.deviceInfo[0]);
  record.Number(at + 21, 8, path.deviceInfo[1]);
  record.Byte(at + 29, path.weight);
  record.Number(at + 32, 4, path.addressLength);
  record.Byte(at + 36, path.port);
  record.Byte(at + 37, path.path);
  record.Byte(at + 38, path.target);
  record.Byte(at + 39, path.lun.value_or(lun.number));
  record.Byte(at + 48, path.lastState.value_or(state));
  record.Byte(at + 49, path.previous.value_or(state));
  record.Number(at + 50, 2, path.requests);
  for (std::size_t flag = 0; flag < path.flags.size(); ++flag) {
    record.Byte(at + 52 + flag, path.flags[flag]);
  }
  record.Number(at + 58, 4, path.internalState);
}

} // namespace

std::vector<std::uint8_t> ArrayRecord(const ArrayModel& array) {
  if (array.raw) {
    return *array.raw;
  }
  RecordWriter record(kArrayRecordSize);
  record.Text(8, 32, array.wwn);
  record.Units(41, 59, array.name);
  for (std::size_t slot = 0; slot < array.interfaceTypes.size(); ++slot) {
    record.Byte(100 + slot, array.interfaceTypes[slot]);
  }
  record.Byte(164, array.id);
  record.Byte(165, array.extendedPathRecovery);
  record.Byte(166, array.utmLunEnabled);
  record.Byte(167, array.utmLunNumber);
  record.Number(168, 4, array.announcedLuns);
  record.Number(172, 4, array.announcedControllers);
  return record.Take();
}

std::vector<std::uint8_t> ControllerRecord(const ControllerModel& controller) {
  if (controller.raw) {
    return *controller.raw;
  }
  RecordWriter record(kControllerRecordSize);
  record.Text(8, 10, controller.serial);
  record.Byte(18, controller.pathsInUse);
  record.Byte(19, controller.serviceMode);
  record.Byte(20, controller.state);
  record.Byte(21, controller.designation);
  for (std::size_t index = 0; index < std::min(controller.paths.size(), kPathSlots); ++index) {
    WriteControllerPath(record, kControllerPathsOffset + kControllerPathSize * index, controller.paths[index]);
  }
  return record.Take();
}

std::vector<std::uint8_t> LunRecord(const LunModel& lun, std::uint8_t owner) {
  if (lun.raw) {
    return *lun.raw;
  }
  RecordWriter record(kLunRecordSize);
  record.Text(8, 32, lun.wwn);
  record.Units(40, 50, lun.vendorProduct);
  record.Byte(90, lun.state);
  record.Byte(91, lun.failover);
  record.Byte(92, lun.pathsInUse);
  record.Byte(93, lun.policy);
  record.Byte(94, lun.persistThroughPowerLoss);
  record.Byte(95, lun.persistSent);
  record.Byte(98, owner);
  record.Text(99, 10, owner == lun.owner ? lun.ownerSerial : lun.preferredSerial);
  record.Byte(109, lun.preferred);
  record.Text(110, 10, lun.preferredSerial);
  record.Text(120, 10, lun.disk);
  record.Byte(130, lun.throttled);
  record.Byte(131, lun.groupThrottled);
  record.Number(132, 4, lun.internalState);
  record.Number(136, 4, lun.tas);
  record.Byte(140, lun.alb);
  // The number of a LUN stands in its first path, which a LUN without paths has empty otherwise.
  record.Byte(kLunPathsOffset + 39, lun.number);
  for (std::size_t index = 0; index < std::min(lun.paths.size(), kPathSlots); ++index) {
    WriteLunPath(record, kLunPathsOffset + kLunPathSize * index, lun.paths[index], lun, owner);
  }
  return record.Take();
}

std::vector<std::uint8_t> DeviceRecord(const DeviceModel& device) {
  if (device.raw) {
    return *device.raw;
  }
  RecordWriter record(kDeviceRecordSize);
  record.Byte(40, device.state);
  record.Byte(41, device.controller);
  record.Byte(56, device.port);
  record.Byte(57, device.path);
  record.Byte(58, device.target);
  record.Byte(59, device.lun);
  return record.Take();
}

} // namespace simhost
