#include "app/options/option_detail_list.h"

#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"

#include <cstring>
#include <utility>

namespace korvex {

OptionDetailRecord* OptionDetailList::Append() {
  if (m_count == m_capacity && !Grow()) {
    m_store.reset();
    m_count = 0;
    m_capacity = 0;
    return nullptr;
  }
  ++m_count;
  return &Last();
}

bool OptionDetailList::Grow() {
  if (m_capacity == 0) {
    m_store = MakeStore("firstOptionDetail", kOptionDetailBytes);
    if (m_store == nullptr) {
      PrintError("Unable to allocate memory - %s!\n", RuntimeErrorText());
      return false;
    }
    m_capacity = 1;
    return true;
  }
  const std::uint64_t capacity = 2 * std::uint64_t{m_capacity};
  OwnedStore larger = MakeStore("optionDetailList", capacity * kOptionDetailBytes);
  if (larger == nullptr) {
    PrintError("Unable to reallocate memory - %s!\n", RuntimeErrorText());
    return false;
  }
  std::memcpy(larger.get(), m_store.get(), SizeInBytes());
  m_store = std::move(larger);
  m_capacity = static_cast<std::uint32_t>(capacity);
  return true;
}

} // namespace korvex
