#pragma once

namespace korvex {

/// The option -D over the word at gOptionIndex: changes the DSM, or lists the installed ones without a word; 1 or 0.
int HandleDsmOption(int wordCount, char** words);

/// Lists the installed DSMs on standard output; true when no error message was printed.
bool ListInstalledDsms();

} // namespace korvex
