#include "simhost/host.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <utility>

namespace simhost {
namespace {

/// What makehost writes for these words, and its status.
std::pair<std::string, int> Made(const std::string& words) {
  std::FILE* output = popen((std::string(KORVEX_MAKEHOST) + " " + words + " 2>/dev/null").c_str(), "r");
  std::string text;
  for (int character = std::fgetc(output); character != EOF; character = std::fgetc(output)) {
    text += static_cast<char>(character);
  }
  return {text, WEXITSTATUS(pclose(output))};
}

TEST(MakehostTest, WritesAValidHostOfTheSizeAskedForOrRefuses) {
  const std::string text = Made("--arrays 3 --luns 5 --paths 20 --generation 2 --seed 7").first;
  EXPECT_NO_THROW(ReadHost(text, {}));
  EXPECT_EQ(Made("--seed 7 --arrays 3 --luns 5 --paths 20").first, text);
  EXPECT_NE(Made("--seed 8 --arrays 3 --luns 5 --paths 20").first, text);
  const auto old = ReadHost(Made("--generation 1 --arrays 1 --luns 0 --paths 32").first, {});
  EXPECT_NE(old->repository.FindClass(L"ZELMPXDSM_WMI_METHODS"), nullptr);
  const Json description = ParseJson(text);
  const Json::Array& arrays = *(*description.Find("dsms")->IfArray())[0].Find("arrays")->IfArray();
  EXPECT_EQ(arrays.size(), 3U);
  EXPECT_EQ(arrays[2].Find("luns")->IfArray()->size(), 5U);
  EXPECT_EQ((*arrays[2].Find("controllers")->IfArray())[1].Find("paths")->IfArray()->size(), 20U);
  for (const char* words : {"--arrays", "--arrays 257", "--luns 257", "--paths 33", "--generation 3", "--seed 1x",
                            "--luns ''", "-x 1", "2"}) {
    EXPECT_EQ(Made(words), std::make_pair(std::string(), 2)) << words;
  }
}

} // namespace
} // namespace simhost
