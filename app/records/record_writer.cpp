#include "app/records/record_writer.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/records/record_text.h"
#include "platform/error.h"

#include <algorithm>
#include <cstring>

namespace korvex {

namespace {

std::uint64_t CountLuns(const UtilStatusInfo& record) {
  std::uint64_t luns = 0;
  for (std::uint32_t slot = 0; slot < record.MaxLuns(); ++slot) {
    if (!record.IsEmpty(slot)) {
      ++luns;
    }
  }
  return luns;
}

/// Puts pieces one behind the other into a store that has room for all of them.
class Composer {
public:
  explicit Composer(unsigned char* store) : m_next(store) {}

  unsigned char* Take(std::size_t length) {
    unsigned char* piece = m_next;
    m_next += length;
    return piece;
  }
  /// A cell of a longer text, cut to its length; with `isTerminated` its last byte is a zero.
  void Cell(const char* text, bool isTerminated) {
    unsigned char* cell = Take(kCellLength);
    const std::size_t kept = std::min(std::strlen(text), isTerminated ? kCellLength - 1 : kCellLength);
    std::memset(cell, 0, kCellLength);
    std::copy_n(text, kept, cell);
  }
  void LineFeed() { *Take(1) = '\n'; }

private:
  unsigned char* m_next;
};

void ComposeFirstLine(const UtilStatusInfo& record, Composer& content) {
  unsigned char* line = content.Take(kFirstLineLength);
  std::memset(line, ' ', kFirstLineLength);
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    const char* word = ControllerStateName(record.ControllerState(controller));
    line[kStateColumns[controller] - 1] = ':';
    std::copy_n(word, std::strlen(word), line + kStateColumns[controller]);
  }
  line[kNameColumn - 1] = ':';
  std::copy_n(record.Name().begin(), kStoredNameLength, line + kNameColumn);
  line[kFirstLineLength - 1] = '\n';
}

void ComposeHeadings(const UtilStatusInfo& record, Composer& content) {
  char cell[24];
  BoundedFormat(cell, sizeof cell, "maxLun%3u:", static_cast<unsigned>(record.MaxLuns()));
  content.Cell(cell, true);
  for (std::uint32_t index = 0; index < record.MaxPaths(); ++index) {
    BoundedFormat(cell, sizeof cell, "CAP%2u    :", static_cast<unsigned>(index));
    content.Cell(cell, true);
  }
  for (std::uint32_t index = 0; index < record.MaxPaths(); ++index) {
    BoundedFormat(cell, sizeof cell, "CBP%2u    :", static_cast<unsigned>(index));
    content.Cell(cell, true);
  }
  content.LineFeed();
}

void ComposePath(const StatusPath& path, Composer& content) {
  char cell[24];
  if (path.Exists()) {
    BoundedFormat(cell, sizeof cell, "P%02XP%02XI%02X:", static_cast<unsigned>(path.port),
                  static_cast<unsigned>(path.path), static_cast<unsigned>(path.target));
  } else {
    BoundedCopy(cell, sizeof cell, kNoPathCell);
  }
  content.Cell(cell, false);
}

void ComposeLun(const UtilStatusInfo& record, std::uint32_t slot, Composer& content) {
  char cell[24];
  BoundedFormat(cell, sizeof cell, "L%03d     :", static_cast<int>(record.LunNumber(slot)));
  content.Cell(cell, false);
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    for (std::uint32_t index = 0; index < record.MaxPaths(); ++index) {
      ComposePath(record.Path(slot, controller, index), content);
    }
  }
  content.LineFeed();
}

/// Writes all of it, in as many calls as the system needs.
bool WriteWhole(const RecordFile& file, const unsigned char* content, std::uint32_t size) {
  std::uint32_t written = 0;
  while (written < size) {
    const std::int64_t count = vrx_WriteFile(file, content + written, size - written);
    if (count == 0) {
      SetLastError(ERROR_DISK_FULL);
      PrintError("vrx_WriteFile: Error writing file. error - %s\n", LastErrorText().c_str());
    }
    if (count <= 0) {
      return false;
    }
    written += static_cast<std::uint32_t>(count);
  }
  return true;
}

} // namespace

bool utilWriteWWNFile(const RecordFile& file, const UtilStatusInfo& record) {
  if (record.ArrayIndex() == UtilStatusInfo::kNoStatus) {
    return true;
  }
  const std::uint64_t size = kFirstLineLength + CellLineLength(record.MaxPaths()) * (CountLuns(record) + 1);
  const OwnedStore content = MakeStore("recordFile", size);
  if (content == nullptr) {
    PrintError("Unable to malloc memory for the record file - %s!\n", RuntimeErrorText());
    return false;
  }
  Composer composer(content.get());
  ComposeFirstLine(record, composer);
  ComposeHeadings(record, composer);
  for (std::uint32_t slot = 0; slot < record.MaxLuns(); ++slot) {
    if (!record.IsEmpty(slot)) {
      ComposeLun(record, slot, composer);
    }
  }
  return vrx_SetFilePointer(file, 0, FILE_BEGIN) != 0xFFFFFFFF &&
         WriteWhole(file, content.get(), static_cast<std::uint32_t>(size));
}

} // namespace korvex
