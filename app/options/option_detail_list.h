#pragma once

#include "app/cli/console/owned_store.h"
#include "app/options/option_records.h"

#include <cstdint>

namespace korvex {

/// The details of one request, in order, in one store that grows.
class OptionDetailList {
public:
  /// A new last record, zeroed; none after a message when memory cannot be had, and the list is empty then.
  OptionDetailRecord* Append();

  bool IsEmpty() const { return m_count == 0; }
  std::uint32_t Count() const { return m_count; }
  /// Bytes as the exchange counts them.
  std::uint32_t SizeInBytes() const { return m_count * kOptionDetailBytes; }
  OptionDetailRecord* Records() { return reinterpret_cast<OptionDetailRecord*>(m_store.get()); }
  OptionDetailRecord& Last() { return Records()[m_count - 1]; }

private:
  bool Grow();

  OwnedStore m_store;
  std::uint32_t m_count = 0;
  std::uint32_t m_capacity = 0;
};

} // namespace korvex
