#pragma once

#include "simhost/cim.h"

#include <optional>
#include <span>
#include <string_view>

// The system properties that every WMI object has: __CLASS, __RELPATH and their like.

namespace simhost {

struct TypedValue {
  CimValue value;
  CIMTYPE type;
};

/// Their names in the order in which they are enumerated.
std::span<const std::wstring_view> SystemPropertyNames();

/// The system property of that name; none for any other name. `server` is the machine's name.
std::optional<TypedValue> SystemProperty(const CimObject& object, std::wstring_view name, std::wstring_view server);

} // namespace simhost
