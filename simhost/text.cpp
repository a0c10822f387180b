#include "simhost/text.h"

#include <algorithm>

namespace simhost {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(std::uint32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Takes one character off the front of UTF-8 text; a byte that begins none counts as one replacement character.
std::uint32_t TakeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  std::size_t length = 1;
  std::uint32_t character = lead;
  std::uint32_t least = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    character = lead & 0x1FU;
    least = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    character = lead & 0x0FU;
    least = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    character = lead & 0x07U;
    least = 0x10000;
  } else if (lead >= 0x80) {
    text.remove_prefix(1);
    return kReplacement;
  }
  bool valid = length <= text.size();
  for (std::size_t i = 1; valid && i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    valid = (next & 0xC0U) == 0x80;
    character = (character << 6) | (next & 0x3FU);
  }
  valid =
      valid && character >= least && character <= 0x10FFFF && !IsHighSurrogate(character) && !IsLowSurrogate(character);
  text.remove_prefix(valid ? length : 1);
  return valid ? character : kReplacement;
}

void AppendUtf8(std::string& text, std::uint32_t character) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80U | ((character >> shift) & 0x3FU)); };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0U | (character >> 6));
    tail(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0U | (character >> 12));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0U | (character >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::uint32_t UnitNumber(wchar_t unit) {
  return static_cast<std::uint32_t>(unit);
}

wchar_t FoldedUnit(wchar_t unit) {
  return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit - L'A' + L'a') : unit;
}

int DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  if (digit >= 'a' && digit <= 'f') {
    return digit - 'a' + 10;
  }
  return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

} // namespace

std::wstring WideFromUtf8(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const std::uint32_t character = TakeCharacter(text);
    if (character >= 0x10000) {
      wide += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
      wide += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    } else {
      wide += static_cast<wchar_t>(character);
    }
  }
  return wide;
}

std::string Utf8FromWide(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t character = UnitNumber(text[i]);
    if (IsHighSurrogate(character) && i + 1 < text.size() && IsLowSurrogate(UnitNumber(text[i + 1]))) {
      ++i;
      character = 0x10000 + ((character - 0xD800) << 10) + (UnitNumber(text[i]) - 0xDC00);
    } else if (IsHighSurrogate(character) || IsLowSurrogate(character) || character > 0x10FFFF) {
      character = kReplacement;
    }
    AppendUtf8(narrow, character);
  }
  return narrow;
}

bool EqualNames(std::wstring_view left, std::wstring_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](wchar_t a, wchar_t b) { return FoldedUnit(a) == FoldedUnit(b); });
}

std::wstring FoldedName(std::wstring_view name) {
  std::wstring folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), FoldedUnit);
  return folded;
}

std::string HexFromBytes(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0x0FU];
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> BytesFromHex(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == ' ') {
      ++i;
      continue;
    }
    if (text.size() - i < 2) {
      return std::nullopt;
    }
    const int high = DigitValue(text[i]);
    const int low = DigitValue(text[i + 1]);
    if (high < 0 || low < 0) {
      return std::nullopt;
    }
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    i += 2;
  }
  return bytes;
}

} // namespace simhost
