#pragma once

#include "platform/types.h"

#include <string_view>

namespace platform {

/// The system's English text for an error code, without its line end; empty for a code without text.
std::wstring_view SystemMessage(DWORD code) noexcept;

} // namespace platform
