#include "simhost/clock.h"
#include "simhost/description.h"
#include "simhost/host.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace simhost {
namespace {

constexpr CodeName kStates[] = {{"optimal", 0}, {"failed", 3}};

/// What the refusal of the value at "/it" says; empty when it is taken.
std::string Refusal(const std::string& json, const std::function<void(const Node&)>& read) {
  const Json value = ParseJson(json);
  try {
    read(Node(value, "/it"));
    return {};
  } catch (const DescriptionError& error) {
    return error.what();
  }
}

TEST(DescriptionTest, RefusesWithPathFoundAndExpected) {
  using Read = std::function<void(const Node&)>;
  const Read byte = [](const Node& node) { node.UnsignedNumber(0, 255); };
  const Read small = [](const Node& node) { node.SignedNumber(-128, 127); };
  const Read flag = [](const Node& node) { static_cast<void>(node.Flag()); };
  const Read text = [](const Node& node) { static_cast<void>(node.Text(2)); };
  const Read bytes = [](const Node& node) { static_cast<void>(node.Bytes(2)); };
  const Read state = [](const Node& node) { node.CodeNumber(kStates, 255); };
  const Read word = [](const Node& node) { node.WordNumber(kStates); };
  const Read list = [](const Node& node) { static_cast<void>(node.Elements(1)); };
  const Read real = [](const Node& node) { static_cast<void>(node.Real()); };
  const std::string toByte = "expected an integer from 0 to 255";
  const struct {
    const Read& read;
    std::string json;
    std::string refusal;
  } rows[] = {
      {byte, "255", ""},
      {byte, "\"0xfF\"", ""},
      {byte, "256", "/it: found 256, " + toByte},
      {byte, "-1", "/it: found -1, " + toByte},
      {byte, "1.0", "/it: found 1.0, " + toByte},
      {byte, "\"x\"", "/it: found \"x\", " + toByte},
      {byte, "\"0x\"", "/it: found \"0x\", " + toByte},
      {byte, "\"0x100\"", "/it: found \"0x100\", " + toByte},
      {byte, "null", "/it: found null, " + toByte},
      {byte, "{}", "/it: found an object, " + toByte},
      {byte, "99999999999999999999", "/it: found 1e+20, " + toByte},
      {small, "-128", ""},
      {small, "128", "/it: found 128, expected an integer from -128 to 127"},
      {flag, "0", "/it: found 0, expected true or false"},
      {text, "\"\\uD83D\\uDE00\"", ""},
      {text, "{\"units\":[55296,0]}", ""},
      {text, "{\"units\":[65536]}", "/it/units/0: found 65536, expected an integer from 0 to 65535"},
      {text, "\"abc\"", "/it: found \"abc\", expected a text of at most 2 UTF-16 units"},
      {bytes, "\"0a FF\"", ""},
      {bytes, "[1,2]", ""},
      {bytes, "\"0a0\"", "/it: found \"0a0\", expected at most 2 bytes as hexadecimal digit pairs or numbers"},
      {bytes, "\"0a0b0c\"", "/it: found \"0a0b0c\", expected at most 2 bytes as hexadecimal digit pairs or numbers"},
      {state, "\"failed\"", ""},
      {state, "77", ""},
      {state, "\"Failed\"",
       "/it: found \"Failed\", expected one of \"optimal\", \"failed\" or an integer from 0 to 255"},
      {word, "3", "/it: found 3, expected one of \"optimal\", \"failed\""},
      {list, "[1,2]", "/it: found an array of 2, expected an array of at most 1 elements"},
      {real, "\"1\"", "/it: found \"1\", expected a number"},
      {byte, "\"" + std::string(100, 'y') + "\"", "/it: found \"" + std::string(59, 'y') + "..., " + toByte},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Refusal(row.json, row.read), row.refusal) << row.json;
  }
}

TEST(DescriptionTest, GivesFallbacksForAbsentKeysOnlyAndRefusesUnknownOnes) {
  EXPECT_EQ(Refusal(R"({"id":7,"name":"x"})",
                    [](const Node& node) {
                      ReadMembers(node, [](Members& members) {
                        EXPECT_EQ(members["id"].Unsigned<int>(0, 9, 1), 7);
                        EXPECT_EQ(members["other"].Unsigned<int>(0, 9, 1), 1);
                        EXPECT_EQ(members["state"].Code<int>(kStates, 9, 5), 5);
                        EXPECT_EQ(members["name"].Text(5, L"fallback"), L"x");
                        EXPECT_EQ(members["title"].Text(5, L"fallback"), L"fallback");
                        EXPECT_TRUE(members["list"].Elements(5).empty());
                        EXPECT_EQ(members["a"].Path(), "/it/a");
                      });
                    }),
            "");
  EXPECT_EQ(
      Refusal("{}", [](const Node& node) { ReadMembers(node, [](Members& m) { m["id"].UnsignedNumber(1, 1); }); }),
      "/it/id: found nothing, expected the integer 1");
  EXPECT_EQ(Refusal("{\"b\":1,\"a\\n\":1}", [](const Node& node) { ReadMembers(node, [](Members& m) { m["b"]; }); }),
            "/it/a\\u000a: found an unknown key, expected one of \"b\"");
  EXPECT_EQ(Refusal("[]", [](const Node& node) { ReadMembers(node, [](Members&) {}); }),
            "/it: found an array of 0, expected an object");
}

/// What is wrong with a whole description; empty when it is taken.
std::string HostRefusal(const std::string& description) {
  try {
    ReadHost(description, {});
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

TEST(DescriptionTest, RefusesWrongHosts) {
  const std::pair<std::string, std::string> rows[] = {
      {"{}", ""},
      {"[]", "/: found an array of 0, expected an object"},
      {R"({"computer":{"name":null,"domain":""},"deviceTree":{"root":"missing"}})", ""},
      {R"({"computer":{"name":5}})", "/computer/name: found 5, expected a text of at most 1024 UTF-16 units"},
      {R"({"deviceTree":{"root":1}})", "/deviceTree/root: found 1, expected one of \"missing\", \"present\""},
      {R"({"clock":{"kind":"slow"}})", "/clock/kind: found \"slow\", expected one of \"real\", \"fixed\", \"virtual\""},
      {R"({"clock":{"now":"2026-01-01T00:00:00Z"}})", "/clock/now: found an unknown key, expected one of \"kind\""},
      {R"({"clock":{"kind":"fixed","now":"2026-02-29T00:00:00Z"}})",
       "/clock/now: found \"2026-02-29T00:00:00Z\", expected a time like \"2026-11-19T04:50:54Z\""},
      {R"({"faults":[{"operation":"Get"}]})", "/faults/0: found an object, expected \"give\" or \"delay\" in it"},
      {R"({"faults":[{"operation":"Put","give":"nothing"}]})",
       "/faults/0/give: found \"nothing\", expected one of \"failed\", \"not found\", \"access denied\", \"provider failure\", "
       "\"type mismatch\", \"out of memory\", \"invalid parameter\", \"not supported\", \"invalid namespace\", "
       "\"invalid class\", \"transport failure\", \"invalid operation\", \"unexpected\", \"no more data\", \"end\" or an "
       "integer from 0 to 4294967295"},
      {R"({"faults":[{"operation":"fopen","give":"access denied","occurrence":[2,1]}]})",
       "/faults/0/occurrence/1: found 1, expected an integer from 2 to 4294967295"},
      {R"({"faults":[{"operation":"fopen","give":5,"occurrence":0}]})",
       "/faults/0/occurrence: found 0, expected a number from 1, [from, to] or \"always\""},
      {R"({"overrides":[{"class":"NoSuch","property":"X","null":true}]})",
       "/overrides/0/class: found \"NoSuch\", expected a class that this host publishes"},
      {R"({"overrides":[{"property":"X","null":true}]})",
       "/overrides/0: found an object, expected either \"class\" or \"method\" in it"},
  };
  for (const auto& [description, refusal] : rows) {
    EXPECT_EQ(HostRefusal(description), refusal) << description;
  }
}

TEST(DescriptionTest, ReadsClocks) {
  const auto clock = [](const char* text) {
    const Json json = ParseJson(text);
    return ReadClock(Node(json, "/clock"));
  };
  // 2026-11-19 04:50:54 UTC is 1795063854 seconds after 1970-01-01.
  constexpr std::uint64_t kNow = (1'795'063'854 + std::uint64_t{11'644'473'600}) * 10'000'000;
  const auto fixed = clock(R"({"kind":"fixed","now":"2026-11-19T04:50:54Z"})");
  EXPECT_EQ(fixed->Now(), kNow);
  fixed->Wait(170'000);
  EXPECT_EQ(fixed->Now(), kNow);
  const auto virtualClock = clock(R"({"kind":"virtual","now":"2026-11-19T04:50:54Z"})");
  virtualClock->Wait(170'000);
  EXPECT_EQ(virtualClock->Now(), kNow + std::uint64_t{170} * 10'000'000);
  EXPECT_EQ(clock(R"({"kind":"fixed","now":"1601-01-01T00:00:00Z"})")->Now(), 0U);
  EXPECT_GT(clock("{}")->Now(), kNow - std::uint64_t{20} * 365 * 86400 * 10'000'000);
}

} // namespace
} // namespace simhost
