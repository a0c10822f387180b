#pragma once

#include "platform/types.h"

#include <string>

namespace korvex {

/// The runtime library's text for its current error number (errno), at most 79 bytes, in a buffer shared by all calls.
const char* RuntimeErrorText();

/// The operating system's text for one of its error codes, or the code as "0x%x" when it has none; wide, in a buffer
/// shared by all calls.
const wchar_t* SystemErrorText(DWORD code);

/// The system's text for the calling thread's last error, in the ANSI code page.
std::string LastErrorText();

} // namespace korvex
