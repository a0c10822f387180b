#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace korvex {

/// The bytes of one driver record, read by offset. What lies behind the end of the record reads as zero, so that a
/// record may be shorter than its layout. Numbers are little-endian.
class RecordBytes {
public:
  explicit RecordBytes(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

  std::uint8_t U8(std::size_t offset) const { return offset < m_bytes.size() ? m_bytes[offset] : std::uint8_t{0}; }
  std::uint16_t U16(std::size_t offset) const { return Number<std::uint16_t>(offset); }
  std::uint32_t U32(std::size_t offset) const { return Number<std::uint32_t>(offset); }
  std::uint64_t U64(std::size_t offset) const { return Number<std::uint64_t>(offset); }

  template <std::size_t Count>
  std::array<std::uint8_t, Count> Bytes(std::size_t offset) const {
    std::array<std::uint8_t, Count> copy{};
    const std::span<const std::uint8_t> part = From(offset);
    std::copy_n(part.begin(), std::min(part.size(), Count), copy.begin());
    return copy;
  }

  /// All `Count` characters of a field that has no terminator of its own, with one behind them.
  template <std::size_t Count>
  std::array<char, Count + 1> Characters(std::size_t offset) const {
    std::array<char, Count + 1> text{};
    for (std::size_t i = 0; i < Count; ++i) {
      text[i] = static_cast<char>(U8(offset + i));
    }
    return text;
  }

  /// UTF-16 text up to its terminator or, without one, as many whole units as the field of `Width` bytes has; one unit
  /// per wide character, terminated.
  template <std::size_t Width>
  std::array<wchar_t, Width / 2 + 1> Utf16(std::size_t offset) const {
    std::array<wchar_t, Width / 2 + 1> text{};
    for (std::size_t i = 0; i < Width / 2; ++i) {
      const std::uint16_t unit = U16(offset + 2 * i);
      if (unit == 0) {
        break;
      }
      text[i] = static_cast<wchar_t>(unit);
    }
    return text;
  }

  /// The bytes from `offset` on; none behind the end.
  RecordBytes Part(std::size_t offset) const { return RecordBytes(From(offset)); }

private:
  std::span<const std::uint8_t> From(std::size_t offset) const {
    return m_bytes.subspan(std::min(offset, m_bytes.size()));
  }

  template <class Unsigned>
  Unsigned Number(std::size_t offset) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
      value |= std::uint64_t{U8(offset + i)} << (8 * i);
    }
    return static_cast<Unsigned>(value);
  }

  std::span<const std::uint8_t> m_bytes;
};

} // namespace korvex
