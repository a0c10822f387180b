#include "bench/record_directory.h"

#include "app/cli/console/bounded_text.h"
#include "app/records/record_directory.h"

#include <filesystem>

namespace fs = std::filesystem;

std::string LayRecordDirectory(const std::string& name) {
  const fs::path directory = fs::path(KORVEX_BENCH_WORK) / name;
  fs::remove_all(directory);
  fs::create_directories(directory);
  std::string path = directory.string() + '/';
  korvex::BoundedCopy(korvex::gWwnDirPath, sizeof korvex::gWwnDirPath, path.c_str());
  return path;
}
