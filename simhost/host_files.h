#pragma once

#include "simhost/host.h"

#include <filesystem>
#include <memory>
#include <string>

// The files beside the program that the host is made from and that tell what became of it.

namespace simhost {

/// Says why the machine cannot be made, in one line on standard error, and ends the process with status 2.
[[noreturn]] void Refuse(const std::string& reason);

/// The host that host.json describes, its changes kept in host.state.jsonl; without a description a bare host of that
/// computer name. Refuses a description or a state that is wrong.
std::shared_ptr<Host> HostOfDirectory(const std::filesystem::path& directory, const std::wstring& computerName);

/// When host.audit is there, has one line about leaks and calls appended to it at the end of the process.
void PrepareAudit(const std::filesystem::path& directory);

} // namespace simhost
