#include "simhost/object_path.h"
#include "tests/unit/sim/lamp_host.h"

namespace simhost {
namespace {

TEST(ObjectPathTest, TakesPathsApart) {
  struct Row {
    const wchar_t* text;
    bool valid;
    const wchar_t* className;
    std::vector<std::pair<std::wstring, std::wstring>> keys;
  };
  const Row rows[] = {
      {L"Lamp", true, L"Lamp", {}},
      {L"Lamp.Name=\"A\\\\1\"", true, L"Lamp", {{L"Name", L"A\\1"}}},
      {L"Lamp.Name='a\"b',Id=-3", true, L"Lamp", {{L"Name", L"a\"b"}, {L"Id", L"-3"}}},
      {L"Lamp=\"x\\\"y\"", true, L"Lamp", {{L"", L"x\"y"}}},
      {L"\\\\.\\root\\wmi:Lamp.Name=\"a:b\"", true, L"Lamp", {{L"Name", L"a:b"}}},
      {L"root\\cimv2:Lamp", false, L"", {}},
      {L"", false, L"", {}},
      {L"Lamp.", false, L"", {}},
      {L"Lamp.Name", false, L"", {}},
      {L"Lamp.Name=", false, L"", {}},
      {L"Lamp.Name=\"open", false, L"", {}},
      {L"Lamp.Name=\"open\\", false, L"", {}},
      {L"Lamp.Name=\"a\",", false, L"", {}},
      {L"Lamp.Name=\"a\" ", false, L"", {}},
      {L"La mp", false, L"", {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
    const std::optional<ObjectPath> path = ParseObjectPath(row.text);
    ASSERT_EQ(path.has_value(), row.valid);
    if (path) {
      EXPECT_EQ(path->className, row.className);
      ASSERT_EQ(path->keys.size(), row.keys.size());
      for (std::size_t i = 0; i < row.keys.size(); ++i) {
        EXPECT_EQ(path->keys[i].name, row.keys[i].first);
        EXPECT_EQ(path->keys[i].value, row.keys[i].second);
      }
    }
  }
}

TEST(ObjectPathTest, NamesExactlyTheInstanceWithTheseKeys) {
  auto definition = std::make_shared<CimClass>();
  definition->name = L"Pair";
  definition->properties = {Key(L"Name"), Property(L"Id", CIM_SINT32)};
  definition->properties[1].key = true;
  const CimObject instance = CimObject(definition).Set(L"Name", L"q\"\\").Set(L"Id", -3);
  EXPECT_EQ(instance.RelativePath(), L"Pair.Name=\"q\\\"\\\\\",Id=-3");
  const std::pair<const wchar_t*, bool> rows[] = {
      {L"Pair.Name=\"q\\\"\\\\\",Id=-3", true},
      {L"pair.id=-3,name=\"Q\\\"\\\\\"", true},
      {L"Pair.Name=\"q\\\"\\\\\"", false},
      {L"Pair.Name=\"q\\\"\\\\\",Id=3", false},
      {L"Pair.Name=\"q\\\"\\\\\",Id=\"-3\"", false},
      {L"Pair.Name=\"q\\\"\\\\\",Id=-3,More=1", false},
      {L"Pair=\"q\\\"\\\\\"", false},
  };
  for (const auto& [path, named] : rows) {
    EXPECT_EQ(ParseObjectPath(path)->Names(instance), named) << testing::PrintToString(std::wstring(path));
  }
  EXPECT_EQ(CimObject(definition).RelativePath(), std::nullopt);
  EXPECT_EQ(CimObject(definition, true).RelativePath(), L"Pair");
}

TEST(ObjectPathTest, TakesMetaClassQueriesOnly) {
  const std::pair<const wchar_t*, std::optional<std::wstring>> rows[] = {
      {L"Select * From Meta_Class Where __SUPERCLASS = \"\"", L""},
      {L"\tSELECT*from meta_class\r\nwhere __superclass=''  ", L""},
      {L"select * from meta_class where __superclass = \"Lamp\"", L"Lamp"},
      {L"select * from Lamp", std::nullopt},
      {L"select * from meta_class", std::nullopt},
      {L"select Name from meta_class where __superclass = \"\"", std::nullopt},
      {L"select * from meta_class where __class = \"\"", std::nullopt},
      {L"select * from meta_class where __superclass = \"\" and 1", std::nullopt},
      {L"selectx * from meta_class where __superclass = \"\"", std::nullopt},
      {L"", std::nullopt},
  };
  for (const auto& [query, superclass] : rows) {
    EXPECT_EQ(ParseMetaClassQuery(query), superclass) << testing::PrintToString(std::wstring(query));
  }
}

TEST(CimTest, HoldsWhatFitsTheTypeOnly) {
  const struct {
    CIMTYPE type;
    CimValue value;
    bool fits;
  } rows[] = {
      {CIM_UINT8, 255, true},
      {CIM_UINT8, 256, false},
      {CIM_UINT8, -1, false},
      {CIM_SINT8, -128, true},
      {CIM_SINT16, 32768, false},
      {CIM_UINT32, 4294967295U, true},
      {CIM_UINT64, UINT64_MAX, true},
      {CIM_SINT64, UINT64_MAX, false},
      {CIM_UINT32, L"1", false},
      {CIM_STRING, 1, false},
      {CIM_BOOLEAN, 1, false},
      {CIM_REAL64, 1.5, true},
      {CIM_STRING, {}, true},
      {CIM_UINT8 | CIM_FLAG_ARRAY, CimValue::Bytes({1}), true},
      {CIM_UINT16 | CIM_FLAG_ARRAY, CimValue::Bytes({1}), false},
      {CIM_UINT16 | CIM_FLAG_ARRAY, CimValue::Array({1, 65536}), false},
      {CIM_UINT16, CimValue::Array({1}), false},
      {CIM_OBJECT, 1, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FitsType(row.value, row.type), row.fits) << "type " << row.type;
  }
}

TEST(RepositoryTest, GivesDerivedClassesWhatTheyInherit) {
  const LampHost lamps;
  const ClassRef spare = lamps.host->repository.FindClass(L"sPARElamp");
  ASSERT_NE(spare, nullptr);
  EXPECT_EQ(spare->properties.size(), 6U);
  EXPECT_NE(spare->FindMethod(L"blink"), nullptr);
  EXPECT_TRUE(spare->IsA(L"LAMP"));
  CimClass again;
  again.name = L"LAMP";
  EXPECT_FALSE(lamps.host->repository.AddClass(again));
  lamps.host->repository.RemoveClass(L"spareLamp");
  EXPECT_EQ(lamps.host->repository.FindClass(L"SpareLamp"), nullptr);
  EXPECT_THROW(lamps.host->repository.RequireClass(L"SpareLamp"), std::invalid_argument);
}

TEST(RepositoryTest, TurnsAProvidersMistakesIntoAFailure) {
  const LampHost lamps;
  std::optional<CimObject> output;
  const auto exec = [&] {
    return lamps.host->repository.ExecuteMethod(L"Lamp=\"B\"", L"SetLevel", nullptr, output).result;
  };
  EXPECT_EQ(exec(), WBEM_S_NO_ERROR);
  EXPECT_EQ(output->Value(L"Before").Number(), 20U);
  lamps.lamps->throws = true;
  EXPECT_EQ(exec(), WBEM_E_PROVIDER_FAILURE);
  lamps.lamps->throws = false;
  lamps.lamps->levels[0] = UINT64_MAX;
  EXPECT_EQ(exec(), WBEM_E_PROVIDER_FAILURE) << "a level that its property cannot hold";
}

TEST(RepositoryTest, WaitsOutWhatTheDriverTakes) {
  LampHost lamps;
  lamps.host->clock = MakeVirtualClock(0);
  lamps.lamps->answer = {WBEM_E_FAILED, 1500};
  std::optional<CimObject> output;
  const Outcome outcome = lamps.host->repository.ExecuteMethod(L"Lamp=\"B\"", L"Blink", nullptr, output);
  EXPECT_EQ(lamps.host->clock->Now(), 0U);
  EXPECT_EQ(lamps.host->Finish(outcome), WBEM_E_FAILED);
  EXPECT_EQ(lamps.host->clock->Now(), 15'000'000U);
}

} // namespace
} // namespace simhost
