#pragma once

#include "app/cli/console/owned_store.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace korvex {

/// The states that the program gives controllers itself; all codes from 10 to 15 have a word.
inline constexpr std::uint8_t kControllerActive = 11;
inline constexpr std::uint8_t kControllerReset = 14;
inline constexpr std::uint8_t kControllerUnknown = 15;

/// The word of a controller's state code; empty for a code without one.
const char* ControllerStateName(std::uint8_t code);
/// The first and the number of the codes that have words.
inline constexpr std::uint8_t kFirstControllerState = 10;
inline constexpr std::uint8_t kControllerStates = 6;

/// One path of a LUN through one controller.
struct StatusPath {
  static constexpr std::uint32_t kNone = 0xFFFFFFFF; ///< no path
  static constexpr std::uint32_t kUp = 1;
  static constexpr std::uint32_t kNotReported = 0; ///< known from before; any other state is down

  std::uint8_t port = 0xFF;
  std::uint8_t path = 0xFF;
  std::uint8_t target = 0xFF;
  std::uint32_t state = kNone;

  bool Exists() const { return state != kNone; }
  bool HasAddressOf(const StatusPath& other) const {
    return port == other.port && path == other.path && target == other.target;
  }
};

/// One array's status: its name, the states of its two controllers and, for each LUN, its paths through either. Held
/// as the image that a generation-1 DSM gives, made for given limits. A slot, controller or path outside the limits
/// must not be asked for.
class UtilStatusInfo {
public:
  static constexpr std::size_t kNameLength = 34;
  static constexpr std::uint32_t kEmptySlot = 0xFFFFFFFF;
  static constexpr std::int32_t kNoStatus = -1;
  static constexpr std::uint32_t kControllers = 2;

  /// Makes a fresh record for the limits in place of what there was; false when there is no memory for it.
  bool Allocate(std::uint32_t maxLuns, std::uint32_t maxPaths);
  void Release() { m_bytes.reset(); }
  /// No name, no status, no LUN and no path, controllers unknown.
  void MakeFresh();
  /// Takes an image of the record's size. Slot n is LUN n: what it calls otherwise is empty.
  void TakeImage(const unsigned char* image);

  std::uint32_t MaxLuns() const { return m_maxLuns; }
  std::uint32_t MaxPaths() const { return m_maxPaths; }
  /// Bytes of the image.
  std::uint32_t Size() const { return m_size; }

  /// The name, zero-padded, without terminator when it fills its room.
  std::span<unsigned char> Name() const { return {m_bytes.get(), kNameLength}; }
  std::uint8_t ControllerState(std::uint32_t controller) const;
  void SetControllerState(std::uint32_t controller, std::uint8_t code);
  /// The array's index; a record with kNoStatus is neither shown nor written.
  std::int32_t ArrayIndex() const;
  void SetArrayIndex(std::int32_t index);
  /// What is kept beside the index when a record takes over another's status: bytes 40 to 47.
  std::span<unsigned char> IndexBytes() const { return {m_bytes.get() + 40, 8}; }

  std::uint32_t LunNumber(std::uint32_t slot) const;
  void SetLunNumber(std::uint32_t slot, std::uint32_t number);
  bool IsEmpty(std::uint32_t slot) const { return LunNumber(slot) == kEmptySlot; }
  StatusPath Path(std::uint32_t slot, std::uint32_t controller, std::uint32_t index) const;
  void SetPath(std::uint32_t slot, std::uint32_t controller, std::uint32_t index, const StatusPath& path);

private:
  std::size_t SlotOffset(std::uint32_t slot) const;
  std::size_t PathOffset(std::uint32_t slot, std::uint32_t controller, std::uint32_t index) const;

  OwnedStore m_bytes;
  std::uint32_t m_size = 0;
  std::uint32_t m_maxLuns = 0;
  std::uint32_t m_maxPaths = 0;
};

/// Makes a fresh record for the limits; false after a message when there is no memory for it.
bool AllocateStatusInfo(UtilStatusInfo& record, std::uint32_t maxLuns, std::uint32_t maxPaths);

} // namespace korvex
