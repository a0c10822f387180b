#include "app/records/status_report.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace korvex {

namespace {

constexpr std::size_t kColumns[] = {13, 40};
constexpr std::size_t kNameColumn = 57;
constexpr std::size_t kStateWidth = 18;
constexpr std::size_t kCellWidth = 22;

/// A line of blanks that texts are put into.
struct StatusLine {
  StatusLine() { std::memset(text, ' ', sizeof text - 1); }
  /// Puts the text at a column, at most `width` characters of it.
  void Put(std::size_t column, const char* words, std::size_t width) {
    std::memcpy(text + column, words, std::min(std::strlen(words), width));
  }
  char text[128] = {};
};

void PrintHeader(const UtilStatusInfo& record) {
  StatusLine line;
  for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
    line.Put(kColumns[controller], ControllerStateName(record.ControllerState(controller)), kStateWidth);
  }
  // A zero byte of the name ends the line.
  std::ranges::copy(record.Name(), line.text + kNameColumn);
  Print("%s\n", line.text);
}

void PutCell(StatusLine& line, std::uint32_t controller, const StatusPath& path, std::uint32_t lunNumber) {
  char cell[40];
  BoundedFormat(cell, sizeof cell, "P%02XP%02XI%02XL%03d  %s", static_cast<unsigned>(path.port),
                static_cast<unsigned>(path.path), static_cast<unsigned>(path.target), static_cast<int>(lunNumber),
                path.state == StatusPath::kUp ? "Up" : "Down");
  line.Put(kColumns[controller], cell, kCellWidth);
}

void PrintLun(const UtilStatusInfo& record, std::uint32_t slot) {
  for (std::uint32_t index = 0; index < record.MaxPaths(); ++index) {
    StatusLine line;
    bool hasPath = false;
    for (std::uint32_t controller = 0; controller < UtilStatusInfo::kControllers; ++controller) {
      const StatusPath path = record.Path(slot, controller, index);
      if (path.Exists()) {
        PutCell(line, controller, path, record.LunNumber(slot));
        hasPath = true;
      }
    }
    if (hasPath) {
      Print("%s\n", line.text);
    }
  }
}

} // namespace

void utilPrintArrayStatus(const UtilStatusInfo& record) {
  if (record.ArrayIndex() == UtilStatusInfo::kNoStatus) {
    return;
  }
  PrintHeader(record);
  for (std::uint32_t slot = 0; slot < record.MaxLuns(); ++slot) {
    if (!record.IsEmpty(slot)) {
      PrintLun(record, slot);
    }
  }
}

} // namespace korvex
