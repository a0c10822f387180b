#pragma once

#include <cstdint>

// Which of the keys directly below Parameters belong to devices that are present: marks in gDsmParameterKeys.

namespace korvex {

/// A path identifier as keys name it: its low 32 bits in lower-case hexadecimal, at least two digits.
class PathKeyText {
public:
  explicit PathKeyText(std::uint64_t pathId);
  const char* c_str() const { return m_digits; }

private:
  char m_digits[9];
};

/// Marks the path keys that the text of a present path keeps; those too short to be compared are traced.
void MarkPathKeys(const PathKeyText& present);

/// Marks the path keys that any controller path of the array read last keeps.
void MarkPathKeysOfArray();

/// Marks the VID/PID keys whose names begin with this text, one UTF-16 unit per character.
void MarkVidPidKeys(const wchar_t* vidPid);

/// Marks all of them, where it is not known what is present.
void KeepTopLevelKeys();

} // namespace korvex
