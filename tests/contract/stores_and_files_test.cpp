#include "platform/allocation.h"
#include "platform/files.h"
#include "tests/contract/support/markers.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

TEST(Store, IsZeroFilledAlignedAndBelowTheCap) {
  for (const std::uint64_t bytes : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{4097}, std::uint64_t{1} << 20U}) {
    errno = contract::kUntouchedErrno;
    auto* store = static_cast<char*>(platform::AllocateStore("store", bytes));
    ASSERT_NE(nullptr, store);
    EXPECT_EQ(contract::kUntouchedErrno, errno);
    EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(store) % alignof(std::max_align_t));
    EXPECT_EQ(std::string(bytes, '\0'), std::string(store, bytes));
    std::fill_n(store, bytes, '\xFF');
    platform::FreeStore(store);
  }
  platform::FreeStore(nullptr);
  for (const std::uint64_t bytes : {platform::kAllocationCap + 1, std::uint64_t{1} << 40U, ~std::uint64_t{0}}) {
    errno = 0;
    EXPECT_EQ(nullptr, platform::AllocateStore("store", bytes));
    EXPECT_EQ(ENOMEM, errno);
  }
}

/// A directory that is there for the length of a test.
class ScratchDirectory {
public:
  ScratchDirectory()
      : m_path(std::filesystem::temp_directory_path() / ("contract-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(m_path);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  std::string operator/(const char* name) const { return (m_path / name).string(); }

private:
  std::filesystem::path m_path;
};

TEST(TextFile, WhatCannotBeOpened) {
  const ScratchDirectory scratch;
  std::filesystem::create_directory(scratch / "directory");
  struct {
    const char* name;
    const char* mode;
    int errorNumber;
  } const rows[] = {
      {"missing", "r", ENOENT},
      {"no-directory/file", "r", ENOENT},
      {"no-directory/file", "w+", ENOENT},
      {"no-directory\\file", "w", ENOENT},
      {"directory", "r", EACCES},
      {"directory", "w+", EACCES},
  };
  for (const auto& row : rows) {
    errno = 0;
    EXPECT_EQ(nullptr, platform::OpenTextFile((scratch / row.name).c_str(), row.mode)) << row.name << ' ' << row.mode;
    EXPECT_EQ(row.errorNumber, errno) << row.name << ' ' << row.mode;
  }
}

TEST(TextFile, WritingEmptiesItFirst) {
  const ScratchDirectory scratch;
  const auto open = [&scratch](const char* mode) {
    errno = contract::kUntouchedErrno;
    std::FILE* file = platform::OpenTextFile((scratch / "file").c_str(), mode);
    EXPECT_NE(nullptr, file);
    EXPECT_EQ(contract::kUntouchedErrno, errno);
    return file;
  };
  for (const char* content : {"a longer text", "short"}) {
    std::FILE* file = open("w+");
    std::fputs(content, file);
    EXPECT_EQ(0, std::fclose(file));
  }
  std::FILE* file = open("r");
  char text[32] = {};
  EXPECT_EQ(5U, std::fread(text, 1, sizeof(text), file));
  EXPECT_STREQ("short", text);
  EXPECT_EQ(0, std::fclose(file));
}

} // namespace
