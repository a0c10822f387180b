#include "simhost/json.h"

#include <gtest/gtest.h>
#include <string>

namespace simhost {
namespace {

TEST(JsonTest, KeepsOrderAndEveryKindOfValueThroughTextAndBack) {
  const std::string text =
      R"({"z":[1,-1,18446744073709551615,-9223372036854775808,0.5,true,null],"a":{"":"\"\\\u0001é😀"}})";
  EXPECT_EQ(ParseJson(text).Write(), text);
  EXPECT_EQ(ParseJson(ParseJson(text).Write()), ParseJson(text));
}

TEST(JsonTest, HoldsIntegersBeyond64BitsAsReals) {
  const Json number = ParseJson("18446744073709551616");
  ASSERT_NE(number.IfReal(), nullptr);
  EXPECT_EQ(*number.IfReal(), 18446744073709551616.0);
}

TEST(JsonTest, RefusesWithLineAndColumn) {
  struct Row {
    std::string text;
    std::string beginning;
    std::string contained;
  };
  const Row rows[] = {
      {"", "line 1, column ", "unexpected end of input"},
      {"{\n  \"a\": 1,\n  b\n}", "line 3, column 3: ", "invalid literal"},
      {"[1] 2", "line 1, column 5: ", "expected end of input"},
      {"{\"a\": 1,\n \"a\": 2}", "line 2, column 4: ", "the key \"a\" is given twice in one object"},
      {"\"\xC3\x28\"", "line 1, column 3: ", "ill-formed UTF-8"},
      {"\"\\uD800\"", "line 1, column 8: ", "surrogate"},
      {"1e999", "line 1, column 5: ", "number overflow"},
      {std::string(65, '['), "line 1, column 65: ", "nested deeper than 64 levels"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text.substr(0, 30));
    try {
      ParseJson(row.text);
      ADD_FAILURE() << "not refused";
    } catch (const JsonError& error) {
      EXPECT_EQ(std::string(error.what()).substr(0, row.beginning.size()), row.beginning) << error.what();
      EXPECT_NE(std::string(error.what()).find(row.contained), std::string::npos) << error.what();
    }
  }
  EXPECT_NO_THROW(ParseJson(std::string(64, '[') + std::string(64, ']')));
}

TEST(JsonTest, WritesInvalidUtf8AsReplacementCharacters) {
  EXPECT_EQ(Json(std::string("a\xFF\xED\xA0\x80")).Write(), "\"a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"");
}

} // namespace
} // namespace simhost
