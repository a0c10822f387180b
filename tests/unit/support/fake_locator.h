#pragma once

#include "platform/wbem.h"

// How the class of the WMI locator gives objects of a test's making.

namespace korvex {

/// Makes the object behind CoCreateInstance of the WMI locator.
using CreateLocator = HRESULT (*)(REFIID riid, void** object, void* context);

/// Puts a maker behind the class of the WMI locator, or takes it away again (none). On Windows COM must be started.
void SetLocatorMaker(CreateLocator create, void* context);

#ifndef _WIN32
/// The `occurrence`-th platform call `operation` on `target` from now on, counted from 1, gives `code` instead of being
/// carried out. Only while there is a locator maker, which takes all faults away as it goes.
void AddPlatformFault(const char* operation, const char* target, std::uint32_t code, unsigned occurrence = 1);
#endif

} // namespace korvex
