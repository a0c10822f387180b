#include "app/cli/console/error_text.h"
#include "app/records/missing_arrays.h"
#include "app/records/record_deletion.h"
#include "app/records/record_reader.h"
#include "app/records/record_writer.h"
#include "app/records/status_merge.h"
#include "platform/error.h"
#include "tests/unit/support/capture.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

namespace korvex {
namespace {

namespace fs = std::filesystem;

/// A directory of record files, and the one that the tests read and write.
class RecordFiles : public testing::Test {
protected:
  const fs::path directory = fs::temp_directory_path() / ("korvex-records-" + std::to_string(std::random_device()()));
  const fs::path path = directory / "a.wwn";

  void SetUp() override {
    fs::create_directories(directory);
    std::string closed = directory.string() + '/';
    std::ranges::replace(closed, '/', '\\');
    ASSERT_LT(closed.size(), sizeof gWwnDirPath);
    std::strcpy(gWwnDirPath, closed.c_str());
  }
  void TearDown() override {
    gWwnDirPath[0] = '\0';
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
    fs::remove_all(directory);
  }

  void Lay(const std::string& content) const { std::ofstream(path, std::ios::binary) << content; }
  std::string Content() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool Read(UtilStatusInfo& record) const {
    RecordFile file;
    return vrx_OpenFile((gWwnDirPath + std::string("a.wwn")).c_str(), file) && utilReadWWNFile(file, record);
  }
  void Write(const UtilStatusInfo& record) const {
    RecordFile file;
    EXPECT_TRUE(vrx_OpenFile((gWwnDirPath + std::string("a.wwn")).c_str(), file) && utilWriteWWNFile(file, record));
  }
};

/// The status of an array with two LUNs, within limits of four LUNs and two paths.
void FillStatus(UtilStatusInfo& record) {
  ASSERT_TRUE(AllocateStatusInfo(record, 4, 2));
  std::memcpy(record.Name().data(), "Atlas", 5);
  record.SetArrayIndex(0);
  for (const std::uint32_t lun : {0U, 2U}) {
    record.SetLunNumber(lun, lun);
    record.SetPath(lun, 0, 0, {1, 2, 3, StatusPath::kUp});
    record.SetPath(lun, 0, 1, {1, 2, 0xAB, StatusPath::kUp});
    record.SetPath(lun, 1, 0, {4, 5, 6, StatusPath::kUp});
  }
}

TEST_F(RecordFiles, CutAnywhereAreWholeAfterTheNextScan) {
  UtilStatusInfo whole;
  FillStatus(whole);
  Write(whole);
  const std::string content = Content();
  ASSERT_EQ(content.size(), 88U + 3 * (11 + 20 * 2));
  for (std::size_t length = 0; length <= content.size(); ++length) {
    Lay(content.substr(0, length));
    UtilStatusInfo current;
    FillStatus(current);
    UtilStatusInfo stored;
    ASSERT_TRUE(AllocateStatusInfo(stored, 4, 2));
    bool isRead = false;
    Capture([&] { isRead = Read(stored); });
    ASSERT_EQ(isRead, length != 0) << length;
    if (isRead) {
      utilMergeStatusInfo(current, stored);
      Write(stored);
      ASSERT_EQ(Content(), content) << length;
    }
  }
}

/// Reads what is laid within limits; every slot is empty or its own LUN. How many are not empty.
int CountLuns(UtilStatusInfo& record) {
  int luns = 0;
  for (std::uint32_t slot = 0; slot < record.MaxLuns(); ++slot) {
    if (!record.IsEmpty(slot)) {
      EXPECT_EQ(record.LunNumber(slot), slot);
      ++luns;
    }
  }
  return luns;
}

TEST_F(RecordFiles, OfAnyContentStayWithinTheLimits) {
  struct Limits {
    std::uint32_t luns;
    std::uint32_t paths;
  };
  constexpr Limits kLimits[] = {{1, 1}, {4, 2}, {3, 40}, {300, 1}};
  const auto read = [&](Limits limits) {
    UtilStatusInfo record;
    EXPECT_TRUE(AllocateStatusInfo(record, limits.luns, limits.paths));
    Capture([&] { EXPECT_TRUE(Read(record)); });
    return CountLuns(record);
  };
  for (const char byte : {'L', '-', '0', '\0', '\xFF'}) {
    Lay(std::string(byte == '0' ? 10'000'000 : 20'000, byte));
    EXPECT_EQ(read(kLimits[2]), 0) << byte;
  }
  UtilStatusInfo whole;
  FillStatus(whole);
  Write(whole);
  const std::string content = Content();
  std::mt19937 random(1);
  for (int round = 0; round < 50; ++round) {
    std::string changed = content;
    for (int change = 0; change < 4; ++change) {
      changed[88 + random() % (changed.size() - 88)] = "L0159P-: \n\xFE"[random() % 11];
    }
    Lay(changed + changed.substr(random() % changed.size()));
    for (const Limits limits : kLimits) {
      read(limits);
    }
  }
}

TEST_F(RecordFiles, ThatGoOrCannotGoMeanwhileDoNotStopTheOthers) {
  Lay("");
  std::ofstream(directory / "b.wwn") << std::string(54, ' ') << "Borealis" << std::string(26, ' ');
  WwnFileList files;
  ASSERT_EQ(utilPrintWWNList(files), 1);
  fs::remove(path);
  const CapturedOutput missing = Capture([&] { PrintMissingArrays(files); });
  EXPECT_EQ(missing.out, "\nMissing Arrays:\n  Borealis" + std::string(25, ' ') + "\n");
  EXPECT_EQ(missing.err, "");

  Lay("read-only");
  constexpr auto kWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(path, kWrite, fs::perm_options::remove);
  fs::create_directory(directory / "aa.wwn");
  const CapturedOutput deletion = Capture([] { EXPECT_EQ(utilDeleteWWNList(), 1); });
  EXPECT_EQ(deletion.out, "");
  SetLastError(ERROR_ACCESS_DENIED);
  const std::string denied = "\n " + LastErrorText() + "\n";
  EXPECT_EQ(deletion.err,
            "Deleting file:  a.wwn\n" + denied + "Deleting file:  aa.wwn\n" + denied + "Deleting file:  b.wwn\n");
  EXPECT_EQ(Content(), "read-only");
  EXPECT_TRUE(fs::is_directory(directory / "aa.wwn"));
  EXPECT_FALSE(fs::exists(directory / "b.wwn"));
}

} // namespace
} // namespace korvex
