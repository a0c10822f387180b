#include "app/cli/console/numeric_input.h"

#include "app/cli/console/print.h"

namespace korvex {

namespace {

constexpr int kValid = 1;
constexpr int kTooLarge = 3;
constexpr std::uint64_t kLargest = 0xFFFFFFFF;
constexpr int kMostHexDigits = 8;

bool IsDecimalDigit(char character) {
  return character >= '0' && character <= '9';
}

/// The value of a hexadecimal digit, or -1.
int HexDigitValue(char character) {
  if (IsDecimalDigit(character)) {
    return character - '0';
  }
  if (character >= 'a' && character <= 'f') {
    return character - 'a' + 10;
  }
  if (character >= 'A' && character <= 'F') {
    return character - 'A' + 10;
  }
  return -1;
}

/// The digits behind a hexadecimal prefix, or none when the text has no prefix or something else behind it.
const char* HexDigits(const char* text) {
  if (text == nullptr || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
    return nullptr;
  }
  for (const char* position = text + 2; *position != '\0'; ++position) {
    if (HexDigitValue(*position) < 0) {
      return nullptr;
    }
  }
  return text + 2;
}

void ReportTooLarge(const char* text, const char* parameterName) {
  PrintError("Input ERROR -> the value associated with parameter '%s' (%s) exceeded 32 bits\n", parameterName, text);
}

int ParseHexDigits(const char* digits, const char* text, const char* parameterName, std::uint32_t* valueOut) {
  while (*digits == '0') {
    ++digits;
  }
  std::uint32_t value = 0;
  for (int count = 0; digits[count] != '\0'; ++count) {
    if (count == kMostHexDigits) {
      ReportTooLarge(text, parameterName);
      return -1;
    }
    value = value * 16 + static_cast<std::uint32_t>(HexDigitValue(digits[count]));
  }
  *valueOut = value;
  return 1;
}

} // namespace

int IsValidInteger(const char* text) {
  if (text == nullptr) {
    return 0;
  }
  std::uint64_t value = 0;
  for (; *text != '\0'; ++text) {
    if (!IsDecimalDigit(*text)) {
      return 0;
    }
    value = value * 10 + static_cast<std::uint64_t>(*text - '0');
    if (value > kLargest) {
      return kTooLarge;
    }
  }
  return kValid;
}

int ParseNumericValue(const char* text, const char* parameterName, std::uint32_t* valueOut) {
  if (const char* digits = HexDigits(text); digits != nullptr) {
    return ParseHexDigits(digits, text, parameterName, valueOut);
  }
  switch (IsValidInteger(text)) {
  case kValid:
    *valueOut = LeadingDecimal(text);
    return 1;
  case kTooLarge:
    ReportTooLarge(text, parameterName);
    return -1;
  default:
    PrintError("Invalid value for parameter %s -> %s - valid hex or decimal value required.\n", parameterName,
               text != nullptr ? text : "");
    return -1;
  }
}

std::uint32_t LeadingDecimal(const char* text) {
  std::uint32_t value = 0;
  for (; text != nullptr && IsDecimalDigit(*text); ++text) {
    value = value * 10 + static_cast<std::uint32_t>(*text - '0');
  }
  return value;
}

} // namespace korvex
