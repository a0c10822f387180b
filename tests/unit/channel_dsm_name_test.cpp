#include "app/channel/channel.h"
#include "app/channel/dsm_name.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/run_state.h"
#include "tests/unit/support/capture.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

namespace korvex {
namespace {

/// Runs in an empty working directory of its own.
class DsmNameTest : public testing::Test {
protected:
  void SetUp() override {
    ResetRunState();
    m_before = std::filesystem::current_path();
    m_directory =
        std::filesystem::temp_directory_path() / ("korvex_dsm_name_" + std::to_string(std::random_device()()));
    std::filesystem::remove_all(m_directory);
    std::filesystem::create_directory(m_directory);
    std::filesystem::current_path(m_directory);
  }
  void TearDown() override {
    std::filesystem::current_path(m_before);
    std::filesystem::remove_all(m_directory);
    ResetRunState();
  }

  static void WriteFile(const std::string& content) { std::ofstream("dsmname.txt", std::ios::binary) << content; }
  static std::string ReadFile() {
    std::ifstream file("dsmname.txt", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void NameOnCommandLine(const char* name) {
    gCommandLineDsm.isSet = true;
    BoundedCopy(gCommandLineDsm.name, sizeof(gCommandLineDsm.name), name);
  }

private:
  std::filesystem::path m_before;
  std::filesystem::path m_directory;
};

/// The chosen name, or what was printed when none was.
std::string Chosen() {
  char name[kDsmNameSize] = "untouched";
  bool isChosen = false;
  const std::string printed = Capture([&] { isChosen = ChooseDsmName(name); }).err;
  return isChosen ? name + printed : "refused: " + printed;
}

TEST_F(DsmNameTest, TakesExactlyEightBytesOfTheFile) {
  const struct {
    const char* what;
    std::string content;
    const char* chosen;
  } cases[] = {
      {"empty", "", "refused: file read error \n"},
      {"7 bytes", "myoemds", "refused: file read error \n"},
      {"8 bytes", "myoemdsm", "myoemdsm"},
      {"9 bytes", "myoemdsm1", "myoemdsm"},
      {"100,000 bytes", std::string(100000, 'x'), "xxxxxxxx"},
      {"a short name with its line end", "oemdsm\r\n", "oemdsm\r\n"},
      {"a line end in the middle", "oem\ndsm1", "oem\ndsm1"},
      {"zero bytes at the end", std::string("dsm\0\0\0\0\0", 8), "dsm"},
      {"a zero byte first", std::string("\0dsm1234", 8), ""},
      {"bytes above 0x7F",
       "\xE9\xDF\xFF\x80\x81"
       "dsm",
       "\xE9\xDF\xFF\x80\x81"
       "dsm"},
      {"the end-of-file character of old",
       "oem\x1A"
       "dsm1",
       "oem\x1A"
       "dsm1"},
  };
  for (const auto& row : cases) {
    WriteFile(row.content);
    EXPECT_EQ(Chosen(), row.chosen) << row.what;
  }
}

TEST_F(DsmNameTest, TakesTheDefaultWithoutAReadableFile) {
  EXPECT_EQ(Chosen(), "zelmpxdsm");
  std::filesystem::create_directory("dsmname.txt");
  EXPECT_EQ(Chosen(), "zelmpxdsm");
}

TEST_F(DsmNameTest, PutsTheCommandLineFirst) {
  WriteFile("filedsm1");
  NameOnCommandLine("tendsm7890");
  EXPECT_EQ(Chosen(), "tendsm7890");

  // An empty word is no name, but a short file is not refused then.
  NameOnCommandLine("");
  gCommandLineDsm.name[0] = '\0';
  EXPECT_EQ(Chosen(), "filedsm1");
  WriteFile("dsm");
  EXPECT_EQ(Chosen(), "dsm");
  WriteFile("");
  EXPECT_EQ(Chosen(), "");
  std::filesystem::remove("dsmname.txt");
  EXPECT_EQ(Chosen(), "zelmpxdsm");
}

TEST_F(DsmNameTest, RemembersTheNameAsGiven) {
  WriteFile("a longer content that goes away");
  RememberDsmName("MyOemdsm_with_more_than_ten");
  EXPECT_EQ(ReadFile(), "MyOemdsm_with_more_than_ten");

  std::filesystem::remove("dsmname.txt");
  std::filesystem::create_directory("dsmname.txt");
  EXPECT_EQ(Capture([] { RememberDsmName("oemdsm"); }).err, "");
}

TEST(DsmClassNames, FollowFromNameAndGeneration) {
  const struct {
    const char* name;
    const char* requested;
    const wchar_t* mofClass;
    const wchar_t* methodsClass1;
    const wchar_t* methodsClass2;
  } cases[] = {
      {"zelmpxdsm", "ZELMPXDSM", L"ZELMPXDSM_", L"ZELMPXDSM_WMI_METHODS", L"ZELMPXDSM_WMI_METHODS_V2"},
      {"oemdsm", "OEMDSM", L"OEMDSM_MOF", L"OEMDSM_WMI_METHODS", L"OEMDSM_WMI_METHODS_V2"},
      {"tendsm7890", "TENDSM7890", L"TENDSM7890", L"TENDSM7890_WMI_METHODS", L"TENDSM7890_WMI_METHODS_V"},
      {"elevendsm_1", "ELEVENDSM_", L"ELEVENDSM_", L"ELEVENDSM__WMI_METHODS", L"ELEVENDSM__WMI_METHODS_V"},
      {"", "", L"_MOF", L"_WMI_METHODS", L"_WMI_METHODS_V2"},
      {"%s%ndsm", "%S%NDSM", L"%S%NDSM_MO", L"%S%NDSM_WMI_METHODS", L"%S%NDSM_WMI_METHODS_V2"},
      // Only a to z change; the wide names come from the ANSI code page.
      {"\xE9@[`{dsm", "\xE9@[`{DSM", L"\u00E9@[`{DSM_M", L"\u00E9@[`{DSM_WMI_METHODS", L"\u00E9@[`{DSM_WMI_METHODS_V2"},
  };
  for (const auto& row : cases) {
    SetRequestedDsm(row.name);
    EXPECT_STREQ(gRequestedDsm, row.requested);
    FormMofClassName();
    EXPECT_STREQ(gDsmMOFClassName, row.mofClass);
    gMofFileVersion[0] = 1;
    gMofFileVersion[1] = 0;
    FormMethodsClassName();
    EXPECT_STREQ(gWmiMethodsName, row.methodsClass1);
    gMofFileVersion[0] = '2';
    gMofFileVersion[1] = '0';
    FormMethodsClassName();
    EXPECT_STREQ(gWmiMethodsName, row.methodsClass2);
  }
}

TEST(InterfaceGeneration, IsTwoOnlyForTheTwoCharacters) {
  const struct {
    std::uint8_t version[2];
    int generation;
  } cases[] = {{{'2', '0'}, 2}, {{'2', '.'}, 1}, {{'1', '0'}, 1}, {{2, 0}, 1},
               {{1, 0}, 1},     {{0, 0}, 1},     {{'0', '2'}, 1}};
  for (const auto& row : cases) {
    std::memcpy(gMofFileVersion, row.version, sizeof gMofFileVersion);
    EXPECT_EQ(InterfaceGeneration(), row.generation) << int{row.version[0]} << ' ' << int{row.version[1]};
  }
}

TEST(DsmNames, AreEqualIgnoringTheCaseOfLetters) {
  EXPECT_TRUE(EqualIgnoringCase("", ""));
  EXPECT_TRUE(EqualIgnoringCase("ZelmpxDsm", "zELMPXdsm"));
  EXPECT_FALSE(EqualIgnoringCase("zelmpxdsm", "zelmpxds"));
  EXPECT_FALSE(EqualIgnoringCase("zelmpxds", "zelmpxdsm"));
  // Neighbours of the letters and letters beyond ASCII are told apart.
  EXPECT_FALSE(EqualIgnoringCase("dsm@", "dsm`"));
  EXPECT_FALSE(EqualIgnoringCase("dsm[", "dsm{"));
  EXPECT_FALSE(EqualIgnoringCase("\xC9", "\xE9"));
}

} // namespace
} // namespace korvex
