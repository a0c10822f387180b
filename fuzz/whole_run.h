#pragma once

#include "simhost/json.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace simhost {
struct Host;
}

// Whole runs of the utility in the fuzzer's process.

namespace fuzzing {

/// Command lines that reach every room, without the program's name.
const std::vector<std::vector<std::string>>& CommandLines();

/// The ready-made hosts' descriptions, in the order of their files' names.
const std::vector<simhost::Json>& ReadyMadeHosts();

/// The description with these keys in place of its own.
simhost::Json With(const simhost::Json& description, const simhost::Json::Object& keys);

/// Runs the utility on the host with the words behind the program's name. Aborts when the run leaves anything allocated
/// or gives a status that no run ends with.
void RunOn(std::shared_ptr<simhost::Host> host, std::vector<std::string> words);

/// Where the utility's record files lie.
std::filesystem::path RecordDirectory();
/// Takes away the files that runs have left.
void RemoveFiles();

} // namespace fuzzing
