#pragma once

namespace korvex {

/// The option -D over the word at gOptionIndex: changes the DSM and steps past the word, or lists the installed DSMs
/// when there is no word or it begins with '-'; 1 or 0.
int HandleDsmOption(int wordCount, char** words);

/// Lists the installed DSMs on standard output; true when no error message was printed.
bool ListInstalledDsms();

} // namespace korvex
