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

TEST(TextFile, IsOpenedOrNot) {
  const auto scratch = std::filesystem::temp_directory_path() / ("contract-" + std::to_string(std::random_device()()));
  std::filesystem::create_directories(scratch / "directory");
  struct {
    const char* name;
    const char* mode;
    int errorNumber; ///< 0 if it can be opened
    const char* written = nullptr;
  } const rows[] = {
      {"missing", "r", ENOENT},
      {"no-directory/file", "r", ENOENT},
      {"no-directory/file", "w+", ENOENT},
      {"no-directory\\file", "w", ENOENT},
      {"directory", "r", EACCES},
      {"directory", "w+", EACCES},
      {"file", "w+", 0, "a longer text"},
      {"file", "w+", 0, "short"}, // in place of what is there
      {"file", "r", 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.name << ' ' << row.mode);
    errno = contract::kUntouchedErrno;
    std::FILE* file = platform::OpenTextFile((scratch / row.name).string().c_str(), row.mode);
    EXPECT_EQ(row.errorNumber == 0 ? contract::kUntouchedErrno : row.errorNumber, errno);
    ASSERT_EQ(row.errorNumber == 0, file != nullptr);
    if (row.written != nullptr) {
      std::fputs(row.written, file);
      std::fclose(file);
    } else if (file != nullptr) {
      char text[32] = {};
      EXPECT_EQ(5U, std::fread(text, 1, sizeof(text), file));
      EXPECT_STREQ("short", text);
      std::fclose(file);
    }
  }
  std::filesystem::remove_all(scratch);
}

} // namespace
