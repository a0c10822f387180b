#include "simhost/registry_values.h"

#include "simhost/text.h"

#include <algorithm>

namespace simhost {

namespace {

constexpr std::size_t kMaxBytes = 1U << 20U;
constexpr std::size_t kNumberBytes = 4;

constexpr CodeName kTypes[] = {
    {"REG_NONE", REG_NONE},           {"REG_SZ", REG_SZ},
    {"REG_EXPAND_SZ", REG_EXPAND_SZ}, {"REG_BINARY", REG_BINARY},
    {"REG_DWORD", REG_DWORD},         {"REG_DWORD_BIG_ENDIAN", REG_DWORD_BIG_ENDIAN},
    {"REG_LINK", REG_LINK},           {"REG_MULTI_SZ", REG_MULTI_SZ},
    {"REG_QWORD", REG_QWORD},
};

std::vector<std::uint8_t> BytesOfNumber(std::uint32_t number) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < kNumberBytes; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
  }
  return bytes;
}

std::vector<std::uint8_t> BytesOfText(std::wstring_view units) {
  std::vector<std::uint8_t> bytes;
  for (const wchar_t unit : units) {
    bytes.push_back(static_cast<std::uint8_t>(unit));
    bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(unit) >> 8U));
  }
  bytes.resize(bytes.size() + 2);
  return bytes;
}

/// The text that the data are, terminator included, when it can be shown as one.
std::optional<std::string> TextOf(const std::vector<std::uint8_t>& data) {
  std::wstring units;
  for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
    units += static_cast<wchar_t>(data[i] | (data[i + 1] << 8));
  }
  if (units.find(L'\0') + 1 != units.size() || data.size() % 2 != 0) {
    return std::nullopt;
  }
  units.pop_back();
  std::string text = Utf8FromWide(units);
  return WideFromUtf8(text) == units ? std::optional(std::move(text)) : std::nullopt;
}

std::string HexText(const std::vector<std::uint8_t>& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += text.empty() ? "" : " ";
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

Json TypeName(DWORD type) {
  const auto* const known = std::ranges::find(kTypes, type, &CodeName::code);
  return known == std::end(kTypes) ? Json(type) : Json(std::string(known->word));
}

} // namespace

platform::RegistryValue ReadRegistryValue(const Node& value) {
  const Json* given = value.Value();
  if (given != nullptr && given->IfUnsigned() != nullptr) {
    return {REG_DWORD, BytesOfNumber(value.Unsigned<std::uint32_t>(0, UINT32_MAX))};
  }
  if (given != nullptr && given->IfText() != nullptr) {
    return {REG_SZ, BytesOfText(value.Text(kMaxBytes / 2 - 1))};
  }
  if (given == nullptr || given->IfObject() == nullptr) {
    value.Refuse("a number of 32 bits, a text, or an object of \"type\" and \"bytes\"");
  }
  platform::RegistryValue read;
  ReadMembers(value, [&read](Members& members) {
    read.type = members["type"].Code<DWORD>(kTypes, UINT32_MAX);
    read.data = members["bytes"].Bytes(kMaxBytes);
  });
  return read;
}

Json WriteRegistryValue(const platform::RegistryValue& value) {
  if (value.type == REG_DWORD && value.data.size() == kNumberBytes) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < kNumberBytes; ++i) {
      number |= std::uint32_t{value.data[i]} << (8 * i);
    }
    return number;
  }
  if (value.type == REG_SZ) {
    if (std::optional<std::string> text = TextOf(value.data)) {
      return *std::move(text);
    }
  }
  return Json::Object{{"type", TypeName(value.type)}, {"bytes", HexText(value.data)}};
}

} // namespace simhost
