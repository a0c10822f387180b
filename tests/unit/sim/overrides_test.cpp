#include "tests/unit/sim/lamp_host.h"

namespace simhost {
namespace {

/// What a client reads of lamp B under the overrides.
std::wstring ShownUnder(const char* rules, const wchar_t* property) {
  LampClient client;
  client.SetOverrides(rules);
  const auto lamp = client.Object(L"Lamp=\"B\"");
  return Shown(lamp.get(), property);
}

TEST(OverridesTest, ReplaceProperties) {
  const struct {
    const char* rules;
    const wchar_t* property;
    std::wstring shown;
  } rows[] = {
      {R"([{"class":"lamp","property":"level","null":true}])", L"Level", L"null"},
      {R"([{"class":"Lamp","property":"Level","missing":true}])", L"Level", L"not found"},
      {R"([{"class":"Lamp","property":"Level","value":"12ab","type":"string"}])", L"Level", L"12ab"},
      {R"([{"class":"Lamp","property":"Level","value":-7,"type":"sint16"}])", L"Level", L"-7"},
      {R"([{"class":"Lamp","property":"Level","value":18446744073709551615,"type":"uint64"}])", L"Level",
       L"18446744073709551615"},
      {R"([{"class":"Lamp","property":"Level","value":null,"type":"object"}])", L"Level", L"null"},
      {R"([{"class":"Lamp","property":"Level","value":true,"type":"boolean"}])", L"Level", L"true"},
      {R"([{"class":"Lamp","property":"Level","value":["a"],"type":"string[]"}])", L"Level", L"type 8200"},
      {R"([{"class":"Lamp","property":"Note","bytes":"00ff"}])", L"Note", L"type 8209"},
      {R"([{"class":"Lamp","property":"Name","null":true}])", L"__RELPATH", L"null"},
      {R"([{"class":"SpareLamp","property":"Level","null":true}])", L"Level", L"20"},
      {R"([{"class":"Lamp","property":"Level","value":1,"type":"uint8"},
           {"class":"Lamp","property":"Level","value":2,"type":"uint16"}])",
       L"Level", L"2"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ShownUnder(row.rules, row.property), row.shown) << row.rules;
  }
}

/// The watts of lamp B's bulbs under the overrides.
std::vector<std::wstring> WattsUnder(const char* rules) {
  LampClient client;
  client.SetOverrides(rules);
  platform::Variant bulbs;
  EXPECT_EQ(client.Object(L"Lamp=\"B\"")->Get(L"Bulbs", 0, bulbs.put(), nullptr, nullptr), WBEM_S_NO_ERROR);
  std::vector<std::wstring> watts;
  void* data = nullptr;
  EXPECT_EQ(SafeArrayAccessData(bulbs.get().parray, &data), S_OK);
  for (ULONG i = 0; i < bulbs.get().parray->rgsabound[0].cElements; ++i) {
    platform::ComPtr<IWbemClassObject> bulb;
    EXPECT_EQ(static_cast<IUnknown**>(data)[i]->QueryInterface(IID_IWbemClassObject, bulb.putVoid()), S_OK);
    watts.push_back(Shown(bulb.get(), L"Watts"));
  }
  SafeArrayUnaccessData(bulbs.get().parray);
  return watts;
}

TEST(OverridesTest, ReachElementsOfListsAndTheListsThemselves) {
  using Watts = std::vector<std::wstring>;
  const std::pair<const char*, Watts> rows[] = {
      {R"([{"class":"Bulb","property":"Watts","null":true}])", {L"null", L"null", L"null"}},
      {R"([{"class":"Bulb","property":"Watts","null":true,"index":1}])", {L"40", L"null", L"42"}},
      {R"([{"class":"Bulb","property":"Watts","null":true,"occurrence":[2,9]}])", {L"40", L"null", L"null"}},
      {R"([{"class":"Lamp","property":"Bulbs","length":1}])", {L"40"}},
      {R"([{"class":"Lamp","property":"Bulbs","length":5}])", {L"40", L"41", L"42", L"42", L"42"}},
      {R"([{"class":"Lamp","property":"Bulbs","length":0}])", {}},
      {R"([{"class":"Lamp","property":"Bulbs","length":4},{"class":"Bulb","property":"Watts","null":true,"index":3}])",
       {L"40", L"41", L"42", L"null"}},
  };
  for (const auto& [rules, watts] : rows) {
    EXPECT_EQ(WattsUnder(rules), watts) << rules;
  }
}

TEST(OverridesTest, CutAndExtendBytes) {
  for (const ULONG length : {0U, 2U, 6U}) {
    LampClient client;
    client.SetOverrides((R"([{"class":"Lamp","property":"Serial","length":)" + std::to_string(length) + "}]"));
    platform::Variant serial;
    ASSERT_EQ(client.Object(L"Lamp=\"B\"")->Get(L"Serial", 0, serial.put(), nullptr, nullptr), WBEM_S_NO_ERROR);
    ASSERT_EQ(serial.get().parray->rgsabound[0].cElements, length);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(serial.get().parray, &data), S_OK);
    const std::uint8_t expected[] = {1, 2, 3, 0, 0, 0};
    EXPECT_TRUE(std::equal(expected, expected + length, static_cast<const std::uint8_t*>(data)));
    SafeArrayUnaccessData(serial.get().parray);
  }
}

TEST(OverridesTest, ReachTheOutputsOfMethodsAndEnumerations) {
  LampClient client;
  client.SetOverrides(R"([{"method":"SetLevel","property":"Before","missing":true,"occurrence":2},
                          {"class":"Lamp","property":"Level","value":0,"type":"uint32","index":1}])");
  platform::ComPtr<IWbemClassObject> output;
  ASSERT_EQ(client.Exec(L"Lamp=\"B\"", L"SetLevel", nullptr, output), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(output.get(), L"Before"), L"20");
  ASSERT_EQ(client.Exec(L"Lamp=\"B\"", L"SetLevel", nullptr, output), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(output.get(), L"Before"), L"not found");
  const auto lamps = client.Instances(L"Lamp");
  for (const wchar_t* level : {L"10", L"0"}) {
    ULONG returned = 0;
    ASSERT_EQ(lamps->Next(WBEM_INFINITE, 1, output.put(), &returned), WBEM_S_NO_ERROR);
    EXPECT_EQ(Shown(output.get(), L"Level"), level);
  }
}

TEST(OverridesTest, RefuseWrongRules) {
  const std::string one = "one of \"null\", \"missing\", \"value\" with \"type\", \"bytes\", \"length\" in it";
  const std::pair<std::string, std::string> rows[] = {
      {R"("class":"Lamp","property":"NoSuch","null":true)",
       "/overrides/0/property: found \"NoSuch\", expected a property of Lamp"},
      {R"("class":"Lamp","property":"Level")", "/overrides/0: found an object, expected " + one},
      {R"("class":"Lamp","property":"Level","null":true,"length":1)", "/overrides/0: found an object, expected " + one},
      {R"("class":"Lamp","property":"Level","value":1)", "/overrides/0: found an object, expected " + one},
      {R"("class":"Lamp","property":"Level","null":false)", "/overrides/0/null: found false, expected true"},
      {R"("class":"Lamp","property":"Level","value":256,"type":"uint8")",
       "/overrides/0/value: found 256, expected an integer from 0 to 255"},
      {R"("class":"Lamp","property":"Level","value":1,"type":"object")",
       "/overrides/0/value: found 1, expected null, as objects cannot be described here"},
      {R"("method":"Blink","property":"Level","null":true)",
       "/overrides/0/method: found \"Blink\", expected a method with an output that this host publishes"},
  };
  const LampHost lamps;
  for (const auto& [rule, refusal] : rows) {
    try {
      lamps.SetOverrides("[{" + rule + "}]");
      ADD_FAILURE() << "not refused: " << rule;
    } catch (const DescriptionError& error) {
      EXPECT_EQ(std::string(error.what()), refusal);
    }
  }
}

} // namespace
} // namespace simhost
