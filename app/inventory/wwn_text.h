#pragma once

#include "app/inventory/gen2_records.h"
#include "app/inventory/rdac_info.h"

namespace korvex {

/// The 32 characters of a world-wide name on standard output, each as it is: a zero byte among them is printed too.
void PrintWwnCharacters(const WwnCharacters& wwn);

/// A world-wide name's 16 bytes on standard output, as 32 lower-case hexadecimal digits.
void PrintWwnBytes(const WwnBytes& wwn);

/// Whether `text` is the 32 lower-case hexadecimal digits of the name.
bool IsTextOfWwn(const char* text, const WwnBytes& wwn);

} // namespace korvex
