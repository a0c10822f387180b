#pragma once

#include "platform/types.h"
#include "wmi/trace_text.h"
#include "wmi/wmi_layer_trace.h"

#include <cstdarg>

namespace korvex {

/// One class's way to the layer trace: its lines carry the category's tag.
class CategoryTrace {
public:
  explicit constexpr CategoryTrace(WmiLayerTrace::Category category) : m_category(category) {}

  /// A call that failed.
  void Error(const char* format, ...) const __attribute__((format(printf, 2, 3))) {
    std::va_list arguments;
    va_start(arguments, format);
    WmiLayerTrace::Instance().PrintList(m_category, WmiLayerTrace::kError, format, arguments);
    va_end(arguments);
  }
  /// What is being done.
  void Detail(const char* format, ...) const __attribute__((format(printf, 2, 3))) {
    std::va_list arguments;
    va_start(arguments, format);
    WmiLayerTrace::Instance().PrintList(m_category, WmiLayerTrace::kDetail, format, arguments);
    va_end(arguments);
  }

private:
  WmiLayerTrace::Category m_category;
};

/// A result as "0x%x" takes it.
constexpr unsigned Hex(HRESULT result) {
  return static_cast<unsigned>(result);
}

} // namespace korvex
