#include "simhost/machine.h"
#include "tests/unit/sim/lamp_host.h"

namespace simhost {
namespace {

TEST(FaultsTest, StrikeTheNamedTargetAndOccurrence) {
  struct Call {
    const char* operation;
    const wchar_t* object;
    const wchar_t* member;
  };
  constexpr Call kLevel = {"Get", L"Lamp", L"Level"};
  constexpr Call kNote = {"Get", L"Lamp", L"Note"};
  constexpr Call kRed = {"Get", L"Colour", L"Red"};
  constexpr Call kPut = {"Put", L"Lamp", L"Level"};
  const struct {
    const char* rule;
    std::vector<std::pair<Call, std::uint32_t>> calls; ///< each with the code that it gives, 0 for none
  } rows[] = {
      {R"([{"operation":"Get","give":"failed"}])", {{kLevel, 0x80041001}, {kRed, 0x80041001}, {kPut, 0}}},
      {R"([{"operation":"Get","target":"lamp","give":5}])", {{kLevel, 5}, {kNote, 5}, {kRed, 0}}},
      {R"([{"operation":"Get","target":"LEVEL","give":5}])", {{kLevel, 5}, {kNote, 0}}},
      {R"([{"operation":"Get","target":"Lamp.Note","give":5}])", {{kLevel, 0}, {kNote, 5}}},
      {R"([{"operation":"Get","target":"Lamp.","give":5}])", {{kLevel, 0}}},
      {R"([{"operation":"Get","give":5,"occurrence":2}])", {{kLevel, 0}, {kPut, 0}, {kNote, 5}, {kRed, 0}}},
      {R"([{"operation":"Get","target":"Note","give":5,"occurrence":2}])", {{kNote, 0}, {kLevel, 0}, {kNote, 5}}},
      {R"([{"operation":"Get","give":5,"occurrence":[2,3]}])", {{kLevel, 0}, {kLevel, 5}, {kLevel, 5}, {kLevel, 0}}},
      {R"([{"operation":"Get","give":"0x80041003","occurrence":"always"}])",
       {{kLevel, 0x80041003}, {kLevel, 0x80041003}}},
      {R"([{"operation":"Get","give":5,"occurrence":1},{"operation":"Get","give":6}])", {{kLevel, 5}, {kLevel, 6}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.rule);
    const LampHost lamps;
    lamps.SetFaults(row.rule);
    for (const auto& [call, code] : row.calls) {
      EXPECT_EQ(lamps.host->faults.Take(OperationIndex(call.operation), call.object, call.member).code.value_or(0),
                code);
    }
  }
}

TEST(FaultsTest, TakeThePlaceOfComCalls) {
  LampClient client;
  client.host->clock = MakeVirtualClock(0);
  client.SetFaults(R"([
    {"operation":"ExecMethod","target":"SetLevel","give":"access denied","occurrence":1},
    {"operation":"ExecMethod","target":"SetLevel","give":"nothing","delay":250,"occurrence":2},
    {"operation":"ExecMethod","target":"SetLevel","delay":50},
    {"operation":"SpawnInstance","target":"SetLevel","give":"out of memory"},
    {"operation":"Get","target":"Lamp.Level","give":"type mismatch"},
    {"operation":"QueryInterface","target":"IClientSecurity","give":"no interface"},
    {"operation":"Next","target":"Lamp","give":"nothing","occurrence":1}])");
  platform::ComPtr<IWbemClassObject> output;
  EXPECT_EQ(client.Exec(L"Lamp=\"B\"", L"SetLevel", nullptr, output), WBEM_E_ACCESS_DENIED);
  EXPECT_EQ(client.Exec(L"Lamp=\"B\"", L"SetLevel", nullptr, output), WBEM_S_NO_ERROR);
  EXPECT_FALSE(output);
  EXPECT_EQ(client.host->clock->Now(), 350U * 10'000U) << "the delays of two calls, 50 and 300 milliseconds";
  EXPECT_EQ(client.Exec(L"Lamp=\"B\"", L"SetLevel", nullptr, output), WBEM_S_NO_ERROR);
  EXPECT_TRUE(output);

  platform::ComPtr<IWbemClassObject> signature;
  ASSERT_EQ(client.Object(L"Lamp")->GetMethod(L"SetLevel", 0, signature.put(), nullptr), WBEM_S_NO_ERROR);
  EXPECT_EQ(signature->SpawnInstance(0, output.put()), WBEM_E_OUT_OF_MEMORY);
  const auto lamp = client.Object(L"Lamp=\"B\"");
  EXPECT_EQ(lamp->Get(L"level", 0, nullptr, nullptr, nullptr), WBEM_E_TYPE_MISMATCH);
  platform::ComPtr<IClientSecurity> security;
  EXPECT_EQ(lamp->QueryInterface(IID_IClientSecurity, security.putVoid()), E_NOINTERFACE);
  ULONG returned = 7;
  EXPECT_EQ(client.Instances(L"Lamp")->Next(WBEM_INFINITE, 1, output.put(), &returned), WBEM_S_NO_ERROR);
  EXPECT_FALSE(output);
}

TEST(FaultsTest, StrikeThePlatformThroughTheMachine) {
  LampHost lamps;
  lamps.host->computer = {L"VeryLongComputerName", std::nullopt};
  const auto machine = MakeSimulatedMachine(lamps.host);
  EXPECT_FALSE(machine->HasFaults());
  lamps.SetFaults(R"([{"operation":"fopen","target":"dsmname.txt","give":"access denied"},
                      {"operation":"AllocateStore","target":"gDsmVersion","give":"out of memory"},
                      {"operation":"CM_Locate_DevNode_ExW","give":"failed"}])");
  EXPECT_TRUE(machine->HasFaults());
  EXPECT_EQ(machine->TakeFault("fopen", "C:\\work\\dsmname.txt"), 13U);
  EXPECT_EQ(machine->TakeFault("fopen", "/work/DSMNAME.TXT"), 13U);
  EXPECT_EQ(machine->TakeFault("fopen", "other.txt"), std::nullopt);
  EXPECT_TRUE(machine->TakeFault("AllocateStore", "gDsmVersion").has_value());
  EXPECT_EQ(machine->TakeFault("CM_Locate_DevNode_ExW", ""), std::uint32_t{CR_FAILURE});
  EXPECT_EQ(machine->TakeFault("NoSuchOperation", ""), std::nullopt);
}

TEST(MachineTest, HasNamesADeviceTreeAndTheLocator) {
  LampHost lamps;
  lamps.host->computer = {L"VeryLongComputerName", std::nullopt};
  const auto machine = MakeSimulatedMachine(lamps.host);
  DWORD error = 0;
  EXPECT_EQ(machine->ComputerName(ComputerNameDnsHostname, error), L"VeryLongComputerName");
  EXPECT_EQ(machine->ComputerName(ComputerNameNetBIOS, error), L"VERYLONGCOMPUTE");
  EXPECT_EQ(machine->ComputerName(ComputerNameDnsDomain, error), std::nullopt);
  EXPECT_NE(error, 0U);
  DEVINST node = 0;
  EXPECT_EQ(machine->LocateDeviceTreeRoot(node), CR_SUCCESS);
  EXPECT_EQ(machine->ReenumerateDeviceNode(node), CR_SUCCESS);
  EXPECT_EQ(machine->ReenumerateDeviceNode(node), CR_SUCCESS);
  EXPECT_NE(machine->ReenumerateDeviceNode(node + 1), CR_SUCCESS);
  EXPECT_EQ(lamps.host->state.Number("deviceTree/reenumerations", 0), 2U);
  lamps.host->deviceTreeRoot = false;
  EXPECT_NE(machine->LocateDeviceTreeRoot(node), CR_SUCCESS);

  platform::ComPtr<IWbemLocator> locator;
  EXPECT_EQ(machine->CreateComObject(CLSID_WbemLocator, IID_IWbemLocator, locator.putVoid()), S_OK);
  EXPECT_EQ(machine->CreateComObject(CLSID_WbemLocator, IID_IWbemServices, locator.putVoid()), E_NOINTERFACE);
  EXPECT_EQ(machine->CreateComObject(IID_IWbemLocator, IID_IWbemLocator, locator.putVoid()), REGDB_E_CLASSNOTREG);
}

} // namespace
} // namespace simhost
