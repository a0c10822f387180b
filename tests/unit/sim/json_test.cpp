#include "simhost/json.h"

#include <gtest/gtest.h>
#include <string>

namespace simhost {
namespace {

TEST(JsonTest, KeepsEveryValueThroughTextAndBack) {
  const std::string text =
      R"({"z":[1,-1,18446744073709551615,-9223372036854775808,0.5,true,null],"a":{"":"\"\\\u0001é😀"}})";
  EXPECT_EQ(ParseJson(text).Write(), text);
  EXPECT_EQ(*ParseJson("18446744073709551616").IfReal(), 18446744073709551616.0);
  EXPECT_EQ(Json(std::string("a\xFF\xED\xA0\x80")).Write(), "\"a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"")
      << "no UTF-8";
}

TEST(JsonTest, RefusesWithLineAndColumn) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "line 1, column "},
      {"{\n  \"a\": 1,\n  b\n}", "line 3, column 3: "},
      {"{\"a\": 1,\n \"a\": 2}", "line 2, column 4: the key \"a\" is given twice in one object"},
      {"\"\xC3\x28\"", "line 1, column 3: "},
      {"\"\\uD800\"", "line 1, column 8: "},
      {std::string(65, '['), "line 1, column 65: nested deeper than 64 levels"},
      {std::string(64, '[') + std::string(64, ']'), "taken"},
  };
  for (const auto& [text, beginning] : rows) {
    std::string answer = "taken";
    try {
      ParseJson(text);
    } catch (const JsonError& error) {
      answer = error.what();
    }
    EXPECT_EQ(answer.substr(0, beginning.size()), beginning) << text.substr(0, 30);
  }
}

} // namespace
} // namespace simhost
