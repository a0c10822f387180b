#pragma once

#include <cstdarg>
#include <cstdint>

namespace korvex {

/// The layer's diagnostic lines on standard output: silent until COM has been started through the layer (`Enable`) and
/// both thresholds have been opened.
class WmiLayerTrace {
public:
  /// Each class of the layer prints under one category, which selects the tag that begins its lines.
  enum Category : std::uint32_t {
    kVariant = 0x04000000,
    kCommon = 0x08000000,
    kEnumerator = 0x10000000,
    kClass = 0x20000000,
    kConnection = 0x40000000,
    kRequest = 0x80000000,
  };
  enum Level : std::uint32_t { kError = 1, kWarning = 2, kInformation = 4, kDetail = 8 };

  /// The one trace of the process.
  static WmiLayerTrace& Instance();

  /// Writes the category's tag and the formatted message (cut to 511 bytes) when the gate lets it through. errno is
  /// left as it was.
  void Print(std::uint32_t category, std::uint32_t level, const char* format, ...)
      __attribute__((format(printf, 4, 5)));
  void PrintList(std::uint32_t category, std::uint32_t level, const char* format, std::va_list arguments)
      __attribute__((format(printf, 4, 0)));

  void Enable() { m_Enabled = 1; }
  void SetCategoryThreshold(std::uint32_t value) { m_CategoryThreshold = value; }
  void SetLevelThreshold(std::uint32_t value) { m_LevelThreshold = value; }

private:
  bool Lets(std::uint32_t category, std::uint32_t level) const {
    return m_Enabled != 0 && m_CategoryThreshold >= category && m_LevelThreshold >= level;
  }

  std::uint8_t m_Enabled = 0;
  std::uint32_t m_CategoryThreshold = 0;
  std::uint32_t m_LevelThreshold = 0;
};

} // namespace korvex
