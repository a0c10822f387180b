#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
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
  // What the target prints on standard output is not looked at.
  if (std::freopen("/dev/null", "r", stdin) == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) {
    return 1;
  }
  for (const std::string& input : inputs) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  }
  return 0;
}
