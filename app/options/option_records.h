#pragma once

#include <cstddef>
#include <cstdint>

// The program's side of the option control exchange: what it asks of the DSM's options and what the DSM answers.

namespace korvex {

struct OptionDetailRecord;

/// What is done with an option that the DSM has accepted; whether it succeeded.
using CompletionHandler = bool(const OptionDetailRecord& detail);

/// Status of an option that is sent or listed.
inline constexpr std::uint32_t kOptionIsVariable = 0;
inline constexpr std::uint32_t kOptionIsAction = 1;

/// Characters of a keyword that are kept.
inline constexpr std::size_t kOptionKeywordLength = 40;

/// One option: a variable with its value, or an action.
struct OptionDetailRecord {
  std::uint32_t Status; ///< sent or listed: kOptionIsVariable or kOptionIsAction; answered: the DSM's verdict
  char Keyword[kOptionKeywordLength + 1]; ///< terminated
  std::uint32_t Value;
  std::uint32_t DefaultValue;
  std::uint32_t MinimumValue;
  std::uint32_t MaximumValue;
  CompletionHandler* completionHandler; ///< of the program alone; none when nothing is to be done
};

/// Bytes that the exchange counts for one option.
inline constexpr std::uint32_t kOptionDetailBytes = 72;
static_assert(sizeof(OptionDetailRecord) == kOptionDetailBytes, "a list's store has the size that the DSM is told");

/// One request of the exchange and, in the same places, the DSM's answer to it.
struct OptionRequestRecord {
  std::uint32_t Magic = 0x20;
  std::uint32_t RequestType = 0;      ///< kReadOptions or kApplyOptions
  std::uint32_t BufferSize = 0;       ///< bytes of details that the program provides
  std::uint32_t BytesTransferred = 0; ///< bytes of details that the DSM returned
  std::uint32_t TotalBytesNeeded = 0; ///< bytes that all details need; 0 when everything fitted
  /// The details, or none. Borrowed; it has room for `detailCount` of them.
  OptionDetailRecord* details = nullptr;
  std::uint32_t detailCount = 0;
};
inline constexpr std::uint32_t kReadOptions = 0;
inline constexpr std::uint32_t kApplyOptions = 1;

} // namespace korvex
