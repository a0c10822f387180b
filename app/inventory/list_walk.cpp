#include "app/inventory/list_walk.h"

#include "app/channel/channel.h"
#include "platform/allocation.h"

#include <algorithm>
#include <limits>

namespace korvex {

ListWalk::~ListWalk() {
  platform::DeleteObject(m_elements);
}

wmiReturn ListWalk::OpenListClass(const wchar_t* name) {
  return m_listClass.Initialize(gDsmChannel->connection, name);
}

wmiReturn ListWalk::OpenElementClass(const wchar_t* name) {
  return m_elementClass.Initialize(gDsmChannel->connection, name);
}

wmiReturn ListWalk::OpenAnswer(OrbWmiVariant& answer) {
  return m_answer.Initialize(&m_listClass, &answer);
}

bool ListWalk::OpenList() {
  return m_answer.InitArrayEnumerator(&m_elementClass, L"List", &m_elements) == kWmiSuccess && m_elements != nullptr;
}

bool ListWalk::ReadNumber(const wchar_t* name, std::uint32_t& value) {
  const wmiReturn status = m_elements->GetProperty(name, &value, sizeof(value));
  return status == kWmiSuccess || status == kWmiNullValue;
}

bool ListWalk::NextRecord(std::span<std::uint8_t> receive, Length length, NullBuffer nullBuffer) {
  std::uint32_t version = 0;
  if (m_index == std::numeric_limits<std::int32_t>::max() || m_elements->GetElement(m_index) != kWmiSuccess ||
      !ReadNumber(L"Size", m_size) || !ReadNumber(L"Version", version)) {
    return false;
  }
  const std::size_t wanted = length == Length::kElementSize ? m_size : receive.size();
  if (wanted > receive.size()) {
    return false;
  }
  // Into exactly a VARIANT's room an object would be read, with a reference that nobody releases.
  const std::size_t room = wanted == sizeof(VARIANT) ? wanted + 1 : wanted;
  const wmiReturn status = m_elements->GetProperty(L"Buffer", receive.data(), static_cast<std::uint32_t>(room));
  if (status != kWmiSuccess && (status != kWmiNullValue || nullBuffer == NullBuffer::kEndsWalk)) {
    return false;
  }
  std::ranges::fill(receive.subspan(wanted), std::uint8_t{0});
  ++m_index;
  return true;
}

} // namespace korvex
