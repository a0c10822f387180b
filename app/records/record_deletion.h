#pragma once

#include "app/records/record_directory.h"

namespace korvex {

/// Carries out -c without a word: deletes every record file. 1 when the directory was processed, 0 after a message.
int utilDeleteWWNList();

/// Carries out -c with the word gOptionArgument: "missing" deletes the files of arrays that the DSM does not report,
/// any other word the files of arrays whose stored name it is. 1 when the directory was processed, else 0 or what the
/// set-up of the module tables gave.
int utilDeleteMissingWWNFiles();

/// Deletes one file; 0, or -1 after a message.
int utilDeleteWWNFile(const char* fullPath);

/// Marks the files of the arrays that the DSM reports; false, after a message, when it cannot be told which those are.
bool utilMarkPresentArrays(WwnFileList& records);

} // namespace korvex
