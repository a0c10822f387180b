#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Text of the simulated host: UTF-8 in the description, UTF-16 units (one per wide character) in WMI.

namespace simhost {

/// UTF-16 units of valid UTF-8; a character beyond U+FFFF gives a surrogate pair. Bytes that are no UTF-8 become
/// U+FFFD.
std::wstring WideFromUtf8(std::string_view text);

/// UTF-8 of UTF-16 units, for messages and the state log; a lone surrogate becomes U+FFFD.
/// unit.
std::string Utf8FromWide(std::wstring_view text);

/// Names are compared as WMI does it: letters A to Z without regard to case, everything else exactly.
bool EqualNames(std::wstring_view left, std::wstring_view right);

/// The name in lower case (A to Z only), as a key of maps.
std::wstring FoldedName(std::wstring_view name);

/// Two lower-case hexadecimal digits for each byte.
std::string HexFromBytes(std::span<const std::uint8_t> bytes);

/// Bytes of hexadecimal digit pairs; blanks between pairs are allowed. None for anything else.
std::optional<std::vector<std::uint8_t>> BytesFromHex(std::string_view text);

} // namespace simhost
