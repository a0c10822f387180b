#pragma once

#include "simhost/description.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The feature options of an installed DSM as the description tells them.

namespace simhost {

struct OptionModel {
  std::wstring keyword;
  bool isAction = false;
  std::uint32_t value = 0;
  std::uint32_t byDefault = 0;
  std::uint32_t minimum = 0;
  std::uint32_t maximum = 0xFFFFFFFF;
  std::optional<std::uint32_t> verdict; ///< what a set answers, whatever was sent; nothing is stored then
};

struct OptionsModel {
  std::vector<OptionModel> options;
  bool padsKeywords = false;              ///< answers keywords padded with blanks to 41 characters
  bool ignoresRoom = false;               ///< answers all options, whatever room the request has
  std::vector<std::uint32_t> bytesNeeded; ///< what the first read requests are told to be needed instead of an answer
};

/// The members "options" and "optionAnswers" of a DSM. Throws DescriptionError.
OptionsModel ReadOptions(const Node& options, const Node& answers);

} // namespace simhost
