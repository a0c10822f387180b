#pragma once

#include <cstddef>

// Which DSM the run talks to, and the class names that follow from its name.

namespace korvex {

/// Room for a DSM service name: 10 characters and a terminator.
inline constexpr std::size_t kDsmNameSize = 11;
/// Service name of the DSM that is taken when none was chosen.
inline constexpr wchar_t kDefaultDsmName[] = L"zelmpxdsm";

/// The name given in the first place of the command line, else the first 8 bytes of dsmname.txt, else the default, as
/// written there. False after a message on standard error when the file is shorter than 8 bytes.
bool ChooseDsmName(char (&name)[kDsmNameSize]);

/// Remembers the chosen name, as given, for later runs in dsmname.txt; silent when that cannot be written.
void RememberDsmName(const char* name);

/// gRequestedDsm becomes `name` cut to 10 characters, with a to z in upper case and every other byte kept.
void SetRequestedDsm(const char* name);

/// gDsmMOFClassName from gRequestedDsm.
void FormMofClassName();

/// gWmiMethodsName from gRequestedDsm and the interface generation.
void FormMethodsClassName();

/// Whether two texts are equal when the case of a to z is ignored.
bool EqualIgnoringCase(const char* left, const char* right);

} // namespace korvex
