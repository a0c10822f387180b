#include "wmi/wmi_layer_trace.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace korvex {
namespace {

struct CategoryTag {
  std::uint32_t category;
  const char* tag;
};

constexpr CategoryTag kTags[] = {
    {WmiLayerTrace::kVariant, "(orbWmiVariant):"},       {WmiLayerTrace::kCommon, "(orbWmiCommon):"},
    {WmiLayerTrace::kEnumerator, "(orbWmiEnumerator):"}, {WmiLayerTrace::kClass, "(orbWmiClass):"},
    {WmiLayerTrace::kConnection, "(orbWmiConnection):"}, {WmiLayerTrace::kRequest, "(orbWmiRequest):"},
};

const char* TagOf(std::uint32_t category) {
  for (const CategoryTag& row : kTags) {
    if (row.category == category) {
      return row.tag;
    }
  }
  return "(N/A):";
}

} // namespace

WmiLayerTrace& WmiLayerTrace::Instance() {
  static WmiLayerTrace trace;
  return trace;
}

void WmiLayerTrace::Print(std::uint32_t category, std::uint32_t level, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  PrintList(category, level, format, arguments);
  va_end(arguments);
}

void WmiLayerTrace::PrintList(std::uint32_t category, std::uint32_t level, const char* format, std::va_list arguments) {
  if (!Lets(category, level)) {
    return;
  }
  const int savedErrno = errno;
  char message[512];
  if (std::vsnprintf(message, sizeof message, format, arguments) >= 0) {
    std::fputs(TagOf(category), stdout);
    std::fputs(message, stdout);
  }
  errno = savedErrno;
}

} // namespace korvex
