#include "app/options/feature_option_reader.h"

#include "app/cli/console/bounded_text.h"
#include "app/cli/console/numeric_input.h"
#include "app/cli/console/trace.h"

namespace korvex {

namespace {

/// The next item's first character in the words of the command line, or none.
char* savedArgs = nullptr;

void CopyKeyword(char* keyword) {
  BoundedCopy(keyword, kOptionKeywordLength + 1, savedArgs);
}

/// Walks to the end of the item, taking the keyword at each '=' and leaving savedArgs behind it. Gives the character
/// that ends the item, or none when the item is refused.
char* FindItemEnd(char* keyword, bool& hasValue) {
  char* end = savedArgs;
  for (;; ++end) {
    TracePrint("savedArgs(Loop): '%s'; '%c'\n", savedArgs, *end);
    switch (*end) {
    case '=':
      *end = '\0';
      CopyKeyword(keyword);
      savedArgs = end + 1;
      hasValue = true;
      break;
    case '\0':
    case ',':
      return end;
    case ';':
      return nullptr;
    default:
      break;
    }
  }
}

} // namespace

int GetNextFeatureOption(char* text, char* keyword, std::uint32_t* value, std::uint8_t* isValueProvided) {
  if (text != nullptr) {
    TracePrint("GetNextFeatureOption: Reset parsing\n");
    savedArgs = text;
  }
  TracePrint("savedArgs: '%s'\n", savedArgs == nullptr ? "(null)" : savedArgs);
  if (keyword == nullptr || value == nullptr || isValueProvided == nullptr) {
    TracePrint("GetNextFeatureOption: No keyword or value buffer provided\n");
    return -1;
  }
  if (savedArgs == nullptr) {
    TracePrint("GetNextFeatureOption: No more args\n");
    return 0;
  }
  bool hasValue = false;
  char* end = FindItemEnd(keyword, hasValue);
  if (end == nullptr) {
    return -1;
  }
  const bool isLast = *end == '\0';
  *end = '\0';
  *value = 0;
  if (hasValue) {
    TracePrint("GetNextFeatureOption: Convert '%s'\n", savedArgs);
    if (ParseNumericValue(savedArgs, keyword, value) == -1) {
      return -1;
    }
  } else {
    CopyKeyword(keyword);
  }
  *isValueProvided = hasValue ? 1 : 0;
  savedArgs = isLast ? nullptr : end + 1;
  TracePrint("GetNextFeatureOption: Keyword '%s', Value 0x%x, ValueProvided 0x%x\n", keyword,
             static_cast<unsigned>(*value), static_cast<unsigned>(*isValueProvided));
  return 1;
}

} // namespace korvex
