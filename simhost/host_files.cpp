#include "simhost/host_files.h"

#include "simhost/statistics.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>

namespace simhost {

namespace {

std::string ReadDescription(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file || std::filesystem::is_directory(path)) {
    Refuse("host.json: cannot be read");
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The audit's file; never destroyed, as it is written at the very end.
std::string& AuditPath() {
  static std::string& path = *new std::string;
  return path;
}

void WriteAudit() {
  try {
    std::ofstream file(AuditPath(), std::ios::app | std::ios::binary);
    file << AuditReport().Write() << '\n';
  } catch (const std::exception& error) {
    std::fprintf(stderr, "host.audit: %s\n", error.what());
  }
}

} // namespace

void Refuse(const std::string& reason) {
  std::fputs((reason + "\n").c_str(), stderr);
  std::fflush(stderr);
  std::_Exit(2);
}

std::shared_ptr<Host> HostOfDirectory(const std::filesystem::path& directory, const std::wstring& computerName) {
  const std::filesystem::path description = directory / "host.json";
  if (!std::filesystem::exists(description)) {
    return MakeBareHost(computerName);
  }
  try {
    return ReadHost(ReadDescription(description), (directory / "host.state.jsonl").string());
  } catch (const StateError& error) {
    Refuse(error.what());
  } catch (const std::exception& error) {
    Refuse(std::string("host.json: ") + error.what());
  }
}

void PrepareAudit(const std::filesystem::path& directory) {
  const std::filesystem::path path = directory / "host.audit";
  if (std::filesystem::exists(path) && AuditPath().empty()) {
    AuditPath() = path.string();
    std::atexit(WriteAudit);
  }
}

} // namespace simhost
