#pragma once

#include <string>

/// Makes an empty directory of that name the one that record files are looked for in, and gives its path with a slash
/// behind it.
std::string LayRecordDirectory(const std::string& name);
