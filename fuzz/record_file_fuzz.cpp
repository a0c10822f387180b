#include "fuzz/input.h"
#include "fuzz/whole_run.h"
#include "simhost/host.h"

#include <fstream>
#include <iterator>
#include <map>

// Whole runs that find record files whose content was changed.

namespace {

namespace fs = std::filesystem;

using Records = std::map<fs::path, std::string>;

/// The record files that a scan of the host makes.
Records RecordsOf(const simhost::Json& host) {
  fuzzing::RunOn(simhost::ReadHost(host.Write(), ""), {"-S"});
  Records records;
  if (!fs::exists(fuzzing::RecordDirectory())) {
    return records;
  }
  for (const fs::directory_entry& entry : fs::directory_iterator(fuzzing::RecordDirectory())) {
    std::ifstream stream(entry.path(), std::ios::binary);
    records[entry.path()] = std::string(std::istreambuf_iterator(stream), {});
  }
  fuzzing::RemoveFiles();
  return records;
}

struct Scene {
  simhost::Json host;
  Records records;
};

const std::vector<Scene>& Scenes() {
  static const std::vector<Scene> scenes = [] {
    std::vector<Scene> made;
    for (const simhost::Json& host : fuzzing::ReadyMadeHosts()) {
      if (const Records records = RecordsOf(host); !records.empty()) {
        made.push_back({host, records});
      }
    }
    return made;
  }();
  return scenes;
}

constexpr const char* kCommandLines[][3] = {
    {"-S", "-S", "-S"}, {"-t", "-S", "-S"}, {"-c", "Atlas", "-S"}, {"-c", "missing", "-S"}, {"-c", "-t", "-S"}};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzzing::Input input(bytes, size);
  const Scene& scene = input.OneOf(Scenes());
  const auto& words = input.OneOf(kCommandLines);
  auto changed = scene.records.begin();
  std::advance(changed, input.Choice(scene.records.size()));
  const std::string content = input.Edited(changed->second);
  fs::create_directories(fuzzing::RecordDirectory());
  for (const auto& [path, written] : scene.records) {
    std::ofstream(path, std::ios::binary) << (path == changed->first ? content : written);
  }
  fuzzing::RunOn(simhost::ReadHost(scene.host.Write(), ""), {std::begin(words), std::end(words)});
  fuzzing::RemoveFiles();
  return 0;
}
