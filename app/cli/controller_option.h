#pragma once

#include "app/cli/option_table.h"

#include <cstdint>

namespace korvex {

/// How a word of the form "WWN,index" reads.
enum class ControllerWord : std::uint8_t { kGood, kBadWwn, kBadIndex };

/// Cuts `word` at its commas, in place; `word` is then the WWN (32 characters, not checked further). A second piece of
/// '0', 'A' or 'a' gives `controllerIndex` 0, one of '1', 'B' or 'b' gives 1. `controllerIndex` is set by a good word
/// only.
ControllerWord SplitControllerWord(char* word, std::uint32_t& controllerIndex);

/// The option -w: the LUNs reachable through the one controller that gOptionArgument selects.
std::int32_t ReportController(const CommandLine& commandLine, std::int32_t status);

} // namespace korvex
