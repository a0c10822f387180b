#include "app/cli/end_of_run.h"
#include "app/inventory/path_information.h"
#include "tests/unit/sim/channel_host.h"

#include <string>
#include <vector>

namespace korvex {
namespace {

using simhost::CimObject;
using simhost::CimValue;

/// A framework that tells `numberPaths` and lists an adapter for each name of `adapters`.
class PathInformationTest : public ChannelHost {
protected:
  void Open() {
    FreeRunBuffers();
    Begin();
    AddVersion(L"2.0.4");
    simhost::CimClass adapter;
    adapter.name = L"MPIO_ADAPTER_INFORMATION";
    adapter.properties = {simhost::Property(L"PathId", CIM_UINT64), simhost::Property(L"BusNumber", CIM_UINT8),
                          simhost::Property(L"DeviceNumber", CIM_UINT8),
                          simhost::Property(L"FunctionNumber", CIM_UINT8),
                          simhost::Property(L"AdapterName", CIM_STRING)};
    Classes().AddClass(std::move(adapter));
    simhost::CimClass framework;
    framework.name = L"MPIO_PATH_INFORMATION";
    framework.properties = {simhost::Property(L"NumberPaths", CIM_UINT32),
                            simhost::EmbeddedArray(L"PathList", L"MPIO_ADAPTER_INFORMATION")};
    AddClass(std::move(framework), [this](CimObject& instance) {
      std::vector<CimObject> list;
      for (const CimValue& name : adapters) {
        const std::uint64_t place = list.size();
        list.emplace_back(Classes().RequireClass(L"MPIO_ADAPTER_INFORMATION"))
            .Set(L"PathId", 0x7700000000010000 + place)
            .Set(L"BusNumber", 3 + place)
            .Set(L"DeviceNumber", 30U)
            .Set(L"FunctionNumber", 7U)
            .Set(L"AdapterName", name);
      }
      instance.Set(L"NumberPaths", numberPaths).Set(L"PathList", CimValue::Embed(std::move(list)));
    });
    ASSERT_TRUE(StartChannel());
  }

  void TearDown() override {
    FreeRunBuffers();
    ChannelHost::TearDown();
  }

  CimValue numberPaths = 3U;
  std::vector<CimValue> adapters = {L"Adapter A", L"Adapter B", L"Adapter C"};
};

/// The name of entry `index`, which must be read whole.
std::wstring ReadName(std::uint32_t index) {
  const PathInformationEntry& entry = gPathInformation->Entries()[index];
  EXPECT_EQ(entry.PathId, 0x7700000000010000 + index);
  EXPECT_EQ(entry.BusNumber, 3 + index);
  EXPECT_EQ(entry.DeviceNumber, 30);
  EXPECT_EQ(entry.FunctionNumber, 7);
  return entry.AdapterName;
}

bool IsZero(const PathInformationEntry& entry) {
  return entry.PathId == 0 && entry.BusNumber == 0 && entry.AdapterName[0] == L'\0';
}

TEST_F(PathInformationTest, EntriesAreReadInTheirOrder) {
  Open();
  EXPECT_TRUE(ReadPathInformation());
  ASSERT_EQ(gPathInformation->count, 3U);
  EXPECT_EQ(ReadName(0), L"Adapter A");
  EXPECT_EQ(ReadName(2), L"Adapter C");
  EXPECT_EQ(gDsmChannel->connection.IsConnected(), 0);
}

TEST_F(PathInformationTest, ListsOfAnotherLengthThanTold) {
  numberPaths = 5U;
  Open();
  EXPECT_TRUE(ReadPathInformation());
  EXPECT_EQ(ReadName(2), L"Adapter C");
  EXPECT_TRUE(IsZero(gPathInformation->Entries()[3]));
  EXPECT_TRUE(IsZero(gPathInformation->Entries()[4]));
  numberPaths = 2U;
  EXPECT_TRUE(ReadPathInformation()) << "again, in place of the table before";
  EXPECT_EQ(gPathInformation->count, 2U);
  numberPaths = 0U;
  EXPECT_TRUE(ReadPathInformation());
  EXPECT_EQ(gPathInformation->count, 0U);
}

TEST_F(PathInformationTest, AdapterNames) {
  const std::wstring longest(79, L'a');
  adapters = {longest.c_str(), L"\u00e9", CimValue(), std::wstring(80, L'b'), L"never read"};
  numberPaths = 5U;
  Open();
  EXPECT_TRUE(ReadPathInformation());
  EXPECT_EQ(ReadName(0), std::wstring(63, L'a'));
  EXPECT_EQ(ReadName(1), L"\u00e9");
  EXPECT_EQ(ReadName(2), L"");
  EXPECT_EQ(gPathInformation->Entries()[3].AdapterName[0], L'\0');
  EXPECT_TRUE(IsZero(gPathInformation->Entries()[4]));
}

} // namespace
} // namespace korvex
