#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sanitizer/common_interface_defs.h>
#include <string>
#include <unistd.h>
#include <vector>

// A fuzz target as a plain program: the inputs that were kept, then made-up ones, the same each time.
//
//   replay COUNT [FILE|DIRECTORY...]

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(const fs::path& place) {
  if (!fs::is_directory(place)) {
    return {place};
  }
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(place)) {
    files.push_back(entry.path());
  }
  return files;
}

/// What the target prints is thrown away; the sanitizers' reports are not.
void Silence() {
  const int errors = dup(STDERR_FILENO);
  __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(errors)));
  if (std::freopen("/dev/null", "r", stdin) == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr ||
      std::freopen("/dev/null", "w", stderr) == nullptr) {
    std::exit(1);
  }
}

} // namespace

int main(int wordCount, char** words) {
  std::vector<std::string> inputs;
  for (int word = 2; word < wordCount; ++word) {
    for (const fs::path& file : FilesOf(words[word])) {
      std::ifstream stream(file, std::ios::binary);
      inputs.emplace_back(std::istreambuf_iterator(stream), std::istreambuf_iterator<char>());
    }
  }
  std::mt19937 numbers(1);
  const int madeUp = wordCount > 1 ? std::atoi(words[1]) : 0;
  for (int count = 0; count < madeUp; ++count) {
    std::string bytes(numbers() % 200, '\0');
    for (char& byte : bytes) {
      byte = static_cast<char>(numbers());
    }
    inputs.push_back(std::move(bytes));
  }
  std::printf("%zu inputs\n", inputs.size());
  std::fflush(stdout);
  Silence();
  for (const std::string& input : inputs) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  }
  return 0;
}
