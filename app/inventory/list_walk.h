#pragma once

#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/orb_wmi_variant.h"
#include "wmi/wmi_return.h"

#include <cstdint>
#include <span>

namespace korvex {

/// One walk over the "List" of binary records that an information request answers with. Set up by the three Open steps
/// in their order and OpenList; then NextRecord gives record after record.
class ListWalk {
public:
  ListWalk() = default;
  ~ListWalk();
  ListWalk(const ListWalk&) = delete;
  ListWalk& operator=(const ListWalk&) = delete;

  /// Bind the class of the answer and that of its elements, on the channel's open connection.
  wmiReturn OpenListClass(const wchar_t* name);
  wmiReturn OpenElementClass(const wchar_t* name);
  /// Stands on the answer object that `answer` holds.
  wmiReturn OpenAnswer(OrbWmiVariant& answer);
  /// Begins the list; false when there is none.
  bool OpenList();

  /// How many bytes of a record's Buffer are asked for: the whole receive buffer, or as many as the element's Size
  /// says.
  enum class Length { kReceiveBuffer, kElementSize };
  /// What a Buffer without a value is.
  enum class NullBuffer { kEndsWalk, kIsZeros };

  /// Reads the next element's record into `receive`, with zeros behind it. False at the end of the list: no more
  /// elements, a failed read, or a record longer than `receive`.
  bool NextRecord(std::span<std::uint8_t> receive, Length length, NullBuffer nullBuffer);
  /// `Size` of the element read last.
  std::uint32_t Size() const { return m_size; }

private:
  bool ReadNumber(const wchar_t* name, std::uint32_t& value);

  OrbWmiClass m_listClass;
  OrbWmiClass m_elementClass;
  OrbWmiEnumerator m_answer;
  OrbWmiEnumerator* m_elements = nullptr;
  std::int32_t m_index = 0;
  std::uint32_t m_size = 0;
};

} // namespace korvex
