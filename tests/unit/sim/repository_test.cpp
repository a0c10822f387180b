#include "simhost/object_path.h"
#include "tests/unit/sim/lamp_host.h"

// Paths of objects, and what the repository makes of its providers.

namespace simhost {
namespace {

/// A path's class and keys in brackets; "none" for no path.
std::wstring Apart(const wchar_t* text) {
  const std::optional<ObjectPath> path = ParseObjectPath(text);
  std::wstring shown = path ? path->className : L"none";
  for (std::size_t i = 0; path && i < path->keys.size(); ++i) {
    shown += L"[" + path->keys[i].name + L"|" + path->keys[i].value + L"]";
  }
  return shown;
}

TEST(ObjectPathTest, TakesPathsApart) {
  const std::pair<const wchar_t*, const wchar_t*> rows[] = {
      {L"Lamp", L"Lamp"},
      {L"Lamp.Name=\"A\\\\1\"", L"Lamp[Name|A\\1]"},
      {L"Lamp.Name='a\"b',Id=-3", L"Lamp[Name|a\"b][Id|-3]"},
      {L"Lamp=\"x\\\"y\"", L"Lamp[|x\"y]"},
      {L"\\\\.\\root\\wmi:Lamp.Name=\"a:b\"", L"Lamp[Name|a:b]"},
      {L"root\\cimv2:Lamp", L"none"},
      {L"", L"none"},
      {L"Lamp.", L"none"},
      {L"Lamp.Name=\"open", L"none"},
      {L"Lamp.Name=\"open\\", L"none"},
      {L"Lamp.Name=\"a\",", L"none"},
      {L"La mp", L"none"},
  };
  for (const auto& [path, apart] : rows) {
    EXPECT_EQ(Apart(path), apart);
  }
}

TEST(ObjectPathTest, NamesExactlyTheInstanceWithTheseKeys) {
  auto definition = std::make_shared<CimClass>();
  definition->name = L"Pair";
  definition->properties = {Key(L"Name"), Property(L"Id", CIM_SINT32)};
  definition->properties[1].key = true;
  const CimObject instance = CimObject(definition).Set(L"Name", L"q\"\\").Set(L"Id", -3);
  const std::pair<const wchar_t*, bool> rows[] = {
      {L"Pair.Name=\"q\\\"\\\\\",Id=-3", true},
      {L"pair.id=-3,name=\"Q\\\"\\\\\"", true},
      {L"Pair.Name=\"q\\\"\\\\\"", false},
      {L"Pair.Name=\"q\\\"\\\\\",Id=\"-3\"", false},
      {L"Pair.Name=\"q\\\"\\\\\",Id=-3,More=1", false},
      {L"Pair=\"q\\\"\\\\\"", false},
  };
  for (const auto& [path, named] : rows) {
    EXPECT_EQ(ParseObjectPath(path)->Names(instance), named) << testing::PrintToString(std::wstring(path));
  }
}

TEST(RepositoryTest, TurnsAProvidersMistakesIntoAFailure) {
  const LampHost lamps;
  std::optional<CimObject> output;
  const auto exec = [&] {
    return lamps.host->repository.ExecuteMethod(L"Lamp=\"B\"", L"SetLevel", nullptr, output).result;
  };
  EXPECT_EQ(exec(), WBEM_S_NO_ERROR);
  EXPECT_EQ(output->Value(L"Before").Number(), 20U);
  for (const CimValue& wrong :
       {CimValue(std::uint64_t{1} << 32), CimValue(-1), CimValue(L"1"), CimValue(true), CimValue(1.5)}) {
    lamps.lamps->wrongAnswer = wrong;
    EXPECT_EQ(exec(), WBEM_E_PROVIDER_FAILURE) << "no value of a uint32";
  }
}

} // namespace
} // namespace simhost
