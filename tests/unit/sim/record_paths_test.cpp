#include "app/cli/console/run_state.h"
#include "app/records/record_deletion.h"
#include "app/records/record_directory.h"
#include "tests/unit/support/capture.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

namespace fs = std::filesystem;

/// A record directory whose path with its closing backslash has exactly `length` characters.
class RecordPaths : public testing::Test {
protected:
  void Lay(std::size_t length) {
    m_top = fs::temp_directory_path() / "korvex-paths";
    std::string path = m_top.string() + "/";
    path += std::string((length - path.size()) % 2 == 0 ? "b" : "bb");
    while (path.size() + 1 < length) {
      path += "/a";
    }
    ASSERT_EQ(path.size() + 1, length);
    fs::create_directories(path);
    std::ofstream(path + "/0123456789.wwn") << "x";
    path += "/";
    std::ranges::replace(path, '/', '\\');
    std::strcpy(gWwnDirPath, path.c_str());
    std::strcpy(gWwnFileName, "0123456789.wwn");
  }
  void TearDown() override {
    fs::remove_all(m_top);
    gWwnDirPath[0] = '\0';
    gWwnFileName[0] = '\0';
  }

private:
  fs::path m_top;
};

std::string FirstLine(const std::string& text) {
  return text.substr(0, text.find(" - "));
}

TEST_F(RecordPaths, ThatDoNotFitAreToldOf) {
  Lay(250); // The pattern fits, the file's path does not.
  EXPECT_EQ(FirstLine(Capture([] { EXPECT_FALSE(vrxUtilSys_DoesWwnDirPathFileExist()); }).err),
            "vrxUtilSys_DoesWwnDirPathFileExist: Error creating full file path. error");
  EXPECT_EQ(FirstLine(Capture([] { EXPECT_EQ(utilDeleteWWNList(), 0); }).err),
            "utilDeleteWWNList: Error creating file to delete. error");
  char anyName[] = "x";
  gOptionArgument = anyName;
  const CapturedOutput byName = Capture([] { EXPECT_EQ(utilDeleteMissingWWNFiles(), 1); });
  EXPECT_EQ(FirstLine(byName.err), "utilDeleteWWNList: Error creating file to delete. error");
  EXPECT_EQ(byName.out, "\n File for x was not found or could not be deleted.\n");
  gOptionArgument = nullptr;
  Lay(256);
  EXPECT_EQ(FirstLine(Capture([] { EXPECT_EQ(utilDeleteWWNList(), 0); }).err),
            "utilDeleteWWNList: Error creating WWN wild card name. error");
  WwnFileList files;
  EXPECT_EQ(FirstLine(Capture([&files] { EXPECT_EQ(utilPrintWWNList(files), 0); }).err),
            "utilPrintWWNList: Error creating WWN wild card name. error");
  EXPECT_FALSE(files.Exists());
}

} // namespace
} // namespace korvex
