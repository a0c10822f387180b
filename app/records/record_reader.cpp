#include "app/records/record_reader.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/records/record_text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace korvex {

namespace {

/// Reads a file piece by piece, while the system is asked for much at a time.
class PieceReader {
public:
  explicit PieceReader(const RecordFile& file) : m_file(file) {}

  /// Copies the next `length` bytes, with zeros behind what the file holds. The bytes that were there, or -1 after a
  /// message.
  std::int64_t Read(unsigned char* piece, std::size_t length) {
    std::memset(piece, 0, length);
    std::size_t filled = 0;
    while (filled < length) {
      if (m_next == m_end && !Fetch()) {
        return -1;
      }
      if (m_next == m_end) {
        break;
      }
      const std::size_t part = std::min(length - filled, m_end - m_next);
      std::memcpy(piece + filled, m_buffer + m_next, part);
      filled += part;
      m_next += part;
    }
    return static_cast<std::int64_t>(filled);
  }

private:
  bool Fetch() {
    const std::int64_t count = vrx_ReadFile(m_file, m_buffer, sizeof m_buffer);
    m_next = 0;
    m_end = count > 0 ? static_cast<std::size_t>(count) : 0;
    return count >= 0;
  }

  const RecordFile& m_file;
  unsigned char m_buffer[16384];
  std::size_t m_next = 0;
  std::size_t m_end = 0;
};

/// The code of the first word that occurs in the field; the record keeps its code when none does.
void ReadControllerState(const unsigned char* line, std::uint32_t controller, UtilStatusInfo& record) {
  char field[kStateSearched + 1] = {};
  std::memcpy(field, line + kStateColumns[controller], kStateSearched);
  for (std::uint8_t i = 0; i < kControllerStates; ++i) {
    const auto code = static_cast<std::uint8_t>(kFirstControllerState + i);
    if (std::strstr(field, ControllerStateName(code)) != nullptr) {
      record.SetControllerState(controller, code);
      return;
    }
  }
}

/// False when the file is empty, and after a message.
bool ReadFirstLine(PieceReader& reader, UtilStatusInfo& record) {
  unsigned char line[kFirstLineLength];
  if (reader.Read(line, sizeof line) <= 0) {
    return false;
  }
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    ReadControllerState(line, controller, record);
  }
  std::copy_n(line + kNameColumn, kStoredNameLength, record.Name().begin());
  std::ranges::fill(record.IndexBytes(), static_cast<unsigned char>(0));
  return true;
}

/// How many of the cells hold the heading's word.
std::uint32_t CountHeadings(const unsigned char* cells, std::uint32_t count, const char* word) {
  std::uint32_t found = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    char cell[kCellLength + 1] = {};
    std::memcpy(cell, cells + kCellLength * i, kCellLength);
    if (std::strstr(cell, word) != nullptr) {
      ++found;
    }
  }
  return found;
}

/// `line` has room for a line of cells. False after a message.
bool ReadHeadings(PieceReader& reader, std::uint32_t maxPaths, unsigned char* line) {
  if (reader.Read(line, CellLineLength(maxPaths)) < 0) {
    return false;
  }
  if (CountHeadings(line + kCellLength, maxPaths, "CAP") != maxPaths) {
    PrintError("No of maxPaths has changed \n");
  }
  if (CountHeadings(line + kCellLength + std::size_t{kCellLength} * maxPaths, maxPaths, "CBP") != maxPaths) {
    PrintError("No of MaxPaths has changed \n");
  }
  return true;
}

std::uint8_t HexDigit(unsigned char digit) {
  if (digit >= '0' && digit <= '9') {
    return static_cast<std::uint8_t>(digit - '0');
  }
  return digit >= 'A' && digit <= 'F' ? static_cast<std::uint8_t>(digit - 'A' + 10) : 0;
}

std::uint8_t HexByte(const unsigned char* digits) {
  return static_cast<std::uint8_t>(HexDigit(digits[0]) << 4 | HexDigit(digits[1]));
}

StatusPath ReadCell(const unsigned char* cell) {
  if (std::memcmp(cell, kNoPathCell, kCellLength) == 0) {
    return {};
  }
  return {HexByte(cell + 1), HexByte(cell + 4), HexByte(cell + 7), StatusPath::kUp};
}

/// The LUN's number in the field at a line's beginning; the record's limit when there is none.
std::uint32_t ReadLunNumber(const unsigned char* field, std::uint32_t maxLuns) {
  char text[kCellLength + 1] = {};
  std::memcpy(text, field, kCellLength);
  int number = 0;
  const bool isRead = std::sscanf(text, "L%3d     :", &number) == 1 && number >= 0;
  return isRead ? std::min(static_cast<std::uint32_t>(number), maxLuns) : maxLuns;
}

/// Takes a LUN's paths from `cells`, as far as `length` bytes hold whole ones.
void TakePaths(const unsigned char* cells, std::size_t length, std::uint32_t slot, UtilStatusInfo& record) {
  const std::uint32_t maxPaths = record.MaxPaths();
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    for (std::uint32_t index = 0; index < maxPaths; ++index) {
      const std::size_t offset = kCellLength * (std::size_t{controller} * maxPaths + index);
      const bool isWhole = offset + kCellLength <= length;
      record.SetPath(slot, controller, index, isWhole ? ReadCell(cells + offset) : StatusPath{});
    }
  }
}

/// `line` has room for a line of cells. False after a message, unless the failure is at the start of a line.
bool ReadLuns(PieceReader& reader, unsigned char* line, UtilStatusInfo& record) {
  const std::size_t cellsLength = CellLineLength(record.MaxPaths()) - kCellLength;
  std::uint32_t nextSlot = 0;
  for (;;) {
    const std::int64_t fieldLength = reader.Read(line, kCellLength);
    if (fieldLength <= 0) {
      return true;
    }
    const std::int64_t length = reader.Read(line + kCellLength, cellsLength);
    if (length < 0) {
      return false;
    }
    const std::uint32_t slot = ReadLunNumber(line, record.MaxLuns());
    if (slot >= record.MaxLuns() || fieldLength < static_cast<std::int64_t>(kCellLength)) {
      continue;
    }
    for (; nextSlot < slot; ++nextSlot) {
      record.SetLunNumber(nextSlot, UtilStatusInfo::kEmptySlot);
    }
    record.SetLunNumber(slot, slot);
    nextSlot = slot + 1;
    TakePaths(line + kCellLength, static_cast<std::size_t>(length), slot, record);
  }
}

} // namespace

bool utilReadWWNFile(const RecordFile& file, UtilStatusInfo& record) {
  const OwnedStore line = MakeStore("recordLine", CellLineLength(record.MaxPaths()));
  if (line == nullptr) {
    PrintError("Unable to malloc memory for the record file - %s!\n", RuntimeErrorText());
    return false;
  }
  PieceReader reader(file);
  return ReadFirstLine(reader, record) && ReadHeadings(reader, record.MaxPaths(), line.get()) &&
         ReadLuns(reader, line.get(), record);
}

} // namespace korvex
