#include "platform/com_owners.h"
#include "tests/unit/sim/wmi_host.h"
#include "wmi/enumerator_security.h"
#include "wmi/orb_wmi_array_enumerator.h"
#include "wmi/orb_wmi_request.h"
#include "wmi/store_ptr.h"

// What connections, classes, enumerators and requests do beyond what a run of the program shows.

namespace korvex {
namespace {

using simhost::InterfaceKind;
using simhost::LiveCount;
using WmiObjectsTest = WmiHostTest;
using Levels = std::pair<DWORD, DWORD>;

/// Authentication and impersonation level of a proxy's blanket.
Levels LevelsOf(IUnknown* proxy) {
  platform::ComPtr<IClientSecurity> security;
  Levels levels;
  EXPECT_EQ(proxy->QueryInterface(IID_IClientSecurity, security.putVoid()), S_OK);
  EXPECT_EQ(security->QueryBlanket(proxy, nullptr, nullptr, nullptr, &levels.first, &levels.second, nullptr, nullptr),
            S_OK);
  return levels;
}

TEST_F(WmiObjectsTest, ConnectionsAreSecuredAnewAndClosed) {
  OrbWmiConnection connection;
  for (int time = 0; time < 2; ++time) { // a second connection replaces the first and is not secured yet
    ASSERT_EQ(connection.Initialize(L"root\\WMI"), 0U);
    EXPECT_EQ(connection.IsSecured(), 0);
    EXPECT_EQ(LiveCount(InterfaceKind::kServices), 2U);
    EXPECT_EQ(setInterfaceSec(connection.GetServices(), nullptr, nullptr, nullptr, 6, 4), S_OK);
    EXPECT_EQ(connection.SetSecurity(), 0U);
    EXPECT_EQ(LevelsOf(connection.GetServices()), Levels(4, 3)) << "the default, and to impersonate";
    EXPECT_EQ(connection.IsSecured(), 1);
  }
  Fail("SetBlanket", "access denied");
  EXPECT_EQ(connection.SetSecurity(), 6U);
  EXPECT_EQ(LiveCount(InterfaceKind::kLocator), 1U) << "its own is gone";
  EXPECT_EQ(CaptureTraced([&] { connection.cleanUp(); }).out,
            "(orbWmiConnection):cleanUp\n(orbWmiConnection):CloseConnection\n");
  EXPECT_EQ(connection.IsConnected(), 0);
}

TEST_F(WmiObjectsTest, InstancesAreSecuredWithTheServicesLevelsOrTheirOwn) {
  constexpr DWORD kKeep = 0xFFFFFFFF;
  IWbemServices* services = m_connection.GetServices();
  std::uint8_t isCloned = 0;
  const platform::ComPtr<IEnumWbemClassObject> lamps(m_class.GetInstanceEnumerator(isCloned));
  EXPECT_EQ(setInterfaceSec(services, nullptr, nullptr, nullptr, 6, 4), S_OK);
  EXPECT_EQ(SetEnumeratorSecurity(services, lamps.get(), nullptr, nullptr, nullptr, kKeep, 2), S_OK);
  EXPECT_EQ(LevelsOf(lamps.get()), Levels(6, 2));
  EXPECT_EQ(SetEnumeratorSecurity(services, lamps.get(), nullptr, nullptr, nullptr, 5, kKeep), S_OK);
  EXPECT_EQ(LevelsOf(lamps.get()), Levels(5, 4));
  // Failures are reported on standard error, with or without the layer's trace.
  const auto secure = [&](IWbemServices* from, IEnumWbemClassObject* of) {
    return Capture([&] { SetEnumeratorSecurity(from, of, nullptr, nullptr, nullptr, 0, 0); }).err;
  };
  EXPECT_EQ(secure(nullptr, lamps.get()), "getAuthFailed\n");
  EXPECT_EQ(secure(services, nullptr), "INVALID arg\nsetInterfaceSec failed - 0x80070057\n");
  // A class hands on its own credentials, and keeps them when new ones are refused.
  ASSERT_EQ(m_connection.SetSecurity(), kWmiSuccess);
  ASSERT_EQ(m_class.SetCredentials(L"NTLMDOMAIN:A", L"B\\c", L"", 0, 0), kWmiSuccess);
  for (const int occurrence : {1, 2, 3}) {
    Fail("AllocateStore", "out of memory", occurrence);
    EXPECT_EQ(m_class.SetCredentials(L"", L"", L"", 0, 0), kWmiOutOfMemory);
  }
  EXPECT_EQ(Capture([&] { EXPECT_EQ(m_class.Initialize(m_connection, L"Lamp"), 1U); }).err,
            "ParseB failed\nparseAuthority Failed\nsetInterfaceSec failed - 0x80070057\n");
}

TEST_F(WmiObjectsTest, NamesAreIterated) {
  char name[7] = "######";
  const auto given = [&](wmiReturn status) { return std::to_string(status) + " " + name; };
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(given(m_class.ResetMethodName(name, 6)), "0 SetLe") << "cut to its room";
    EXPECT_EQ(given(m_class.NextMethodName(name, 6)), "0 Blink");
    EXPECT_EQ(m_class.NextMethodName(name, 6), 2U);
  }
  std::string all;
  for (wmiReturn status = m_class.ResetPropertyName(name, 6); status == 0; status = m_class.NextPropertyName(name, 6)) {
    all += std::string(name) + " ";
  }
  EXPECT_TRUE(all.starts_with("__GEN ") && all.ends_with(" Name Level Colou Note ")) << all;
}

TEST_F(WmiObjectsTest, EnumeratorsWalkIndependentlyButShareAQuery) {
  OrbWmiEnumerator other;
  ASSERT_EQ(other.Initialize(&m_class), kWmiSuccess);
  EXPECT_EQ(m_lamp.Next(), 0U);
  EXPECT_EQ(Number(m_lamp, L"Level"), 20);
  EXPECT_EQ(Number(other, L"Level"), 10);
  EXPECT_EQ(m_lamp.Next(), 2U) << "the spare lamps are of another class";
  EXPECT_EQ(m_lamp.GetClassObjectInstance(), nullptr);
  EXPECT_EQ(m_lamp.Reset(), 0U);
  EXPECT_EQ(m_lamp.Next(), 0U);
  EXPECT_EQ(Number(m_lamp, L"Level"), 10);
  std::uint8_t isCloned = 0;
  m_class.setQueryInstance(m_class.GetInstanceEnumerator(isCloned));
  ASSERT_EQ(other.Initialize(&m_class), kWmiSuccess);
  EXPECT_EQ(Number(other, L"Level"), 10);
  ASSERT_EQ(m_lamp.Initialize(&m_class), kWmiSuccess);
  EXPECT_EQ(Number(m_lamp, L"Level"), 20);
}

TEST_F(WmiObjectsTest, PropertiesAreReadWrittenAndSaved) {
  char text[5] = "####";
  EXPECT_EQ(m_lamp.GetProperty(L"Name", text, sizeof text), 0U);
  EXPECT_EQ(std::string(text, sizeof text), std::string("A\\1\0\0", 5));
  EXPECT_EQ(m_lamp.GetProperty(L"Name", text, 3), 1U);
  EXPECT_EQ(text[0], '\0');
  text[0] = '#';
  EXPECT_EQ(Traced([&] { return m_lamp.GetProperty(L"Note", text, sizeof text); }),
            "7 (orbWmiEnumerator):NullDataType(GetProperty)\n");
  EXPECT_EQ(text[0], '\0');
  const std::uint32_t level = 12;
  EXPECT_EQ(m_lamp.SetProperty(L"Level", &level, sizeof level), 0U);
  EXPECT_EQ(m_lamp.SaveProperties(), 0U);
  EXPECT_EQ(m_lamps.lamps->levels[0], 12U);
}

TEST_F(WmiObjectsTest, NoMoreIsTakenFromAValueThanItsLength) {
  constexpr std::pair<CIMTYPE, std::uint32_t> kLeast[] = {{CIM_UINT8, 1},  {CIM_BOOLEAN, 1}, {CIM_SINT8, 2},
                                                          {CIM_SINT16, 2}, {CIM_UINT16, 2},  {CIM_SINT32, 4},
                                                          {CIM_UINT32, 4}, {CIM_SINT64, 8},  {CIM_UINT64, 8}};
  for (const auto& [type, least] : kLeast) {
    simhost::CimClass number;
    number.name = L"Number" + std::to_wstring(type);
    number.properties = {simhost::Property(L"Number", type)};
    m_lamps.host->repository.AddClass(number);
    ASSERT_EQ(m_class.Initialize(m_connection, number.name.c_str()), kWmiSuccess);
    ASSERT_EQ(m_lamp.InitializeInputEnumerator(&m_class), kWmiSuccess);
    const auto value = std::make_unique<char[]>(least); // of that size, so that reading on is noticed
    value[0] = 1;
    EXPECT_EQ(m_lamp.SetProperty(L"Number", value.get(), least - 1), 1U) << type;
    EXPECT_EQ(m_lamp.SetProperty(L"Number", value.get(), least), 0U) << type;
    EXPECT_TRUE(type != CIM_UINT16 || Number(m_lamp, L"Number") == 1) << "a uint16 from its own 16 bits";
  }
}

TEST_F(WmiObjectsTest, ArraysAndObjectsAreBuiltForProperties) {
  OrbWmiArrayEnumerator builder;
  for (const int first : {40, 50}) { // a second array replaces the first
    ASSERT_EQ(builder.Initialize(&m_colours, 2), 0U);
    std::uint32_t index = 99;
    for (std::uint32_t place = 0; place < 2; ++place) {
      ASSERT_EQ(builder.NewElementInstance(), kWmiSuccess);
      const auto red = static_cast<std::uint8_t>(first + static_cast<int>(place));
      ASSERT_EQ(builder.SetProperty(L"Red", &red, sizeof red), kWmiSuccess);
      EXPECT_EQ(builder.SaveElementInstance(&index), 0U);
      EXPECT_EQ(index, place);
    }
    EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(&index); }),
              "1 (orbWmiEnumerator):ElementNotSaved(OrbWmiArrayEnumerator).  Error 0x8002000b\n");
    EXPECT_EQ(index, 0U);
  }
  EXPECT_EQ(builder.GetSafeArray()->rgsabound[0].lLbound, 1);
  OrbWmiClass shelves;
  ASSERT_EQ(shelves.Initialize(m_connection, L"Shelf"), kWmiSuccess);
  OrbWmiEnumerator shelf;
  ASSERT_EQ(shelf.InitializeInputEnumerator(&shelves), kWmiSuccess);
  ASSERT_EQ(shelf.SetProperty(L"Colours", builder.GetSafeArray(), sizeof(void*)), kWmiSuccess);
  OrbWmiEnumerator* made = nullptr;
  ASSERT_EQ(shelf.InitArrayEnumerator(&m_colours, L"Colours", &made), kWmiSuccess);
  const StorePtr<OrbWmiEnumerator> list(made);
  ASSERT_EQ(list->GetElement(1), kWmiSuccess);
  EXPECT_EQ(Number(*list, L"Red"), 51);
  ASSERT_EQ(list->GetElement(0), kWmiSuccess);
  // An object's reference passes to the property, or goes with a failed call.
  ASSERT_EQ(m_lamp.SetProperty(L"Colour", list->GetEnumeratorInterface(), sizeof(void*)), kWmiSuccess);
  Fail("Put", "failed");
  EXPECT_EQ(m_lamp.SetProperty(L"Colour", list->GetEnumeratorInterface(), sizeof(void*)), 1U);
  ASSERT_EQ(m_lamp.InitUnknownEnumerator(L"Colour", &made), kWmiSuccess);
  EXPECT_EQ(Number(*StorePtr<OrbWmiEnumerator>(made), L"Red"), 50);
  // A plain value is not taken for an array or an object.
  EXPECT_EQ(shelf.SetProperty(L"Colours", "1234", 4), 1U);
  EXPECT_EQ(m_lamp.SetProperty(L"Colour", "123456789", 9), 1U);
}

TEST_F(WmiObjectsTest, MethodsAreCalledWithTheirArguments) {
  OrbWmiVariant level;
  OrbWmiVariant before;
  const std::uint32_t number = 30;
  ASSERT_EQ(level.SetProperty(&number, sizeof number, CIM_UINT32), kWmiSuccess);
  ASSERT_EQ(before.SetProperty("replaced", 8, CIM_STRING), kWmiSuccess);
  // Blink takes and gives nothing, whatever is added.
  for (const auto& [method, outcome] :
       {std::pair{L"SetLevel", "1 (orbWmiRequest):WmiRequestFailed(Get)-OutputParams.  Error 0x80041002\n"},
        std::pair{L"Blink", "0 "}}) {
    OrbWmiRequest request;
    ASSERT_EQ(request.MethodRequest(method, &m_class), kWmiSuccess);
    ASSERT_EQ(request.AddInputParameter(L"Level", &level), kWmiSuccess);
    ASSERT_EQ(request.AddOutputParameter(L"Before", &before), kWmiSuccess);
    ASSERT_EQ(request.AddOutputParameter(L"Missing", &level), kWmiSuccess);
    EXPECT_EQ(Traced([&] { return request.ExecMethod(&m_lamp); }), outcome);
  }
  EXPECT_EQ(m_lamps.lamps->levels[0], 30U);
  EXPECT_EQ(before.GetVariant().lVal, 10) << "filled, as it comes before the missing one";
  EXPECT_EQ(level.GetVariant().lVal, 30) << "keeps what it held";
}

TEST_F(WmiObjectsTest, TheResultsOfAQueryBelongToTheRequest) {
  OrbWmiRequest request;
  ASSERT_EQ(request.QueryRequest(L"Select * From Meta_Class Where __SUPERCLASS = \"\"", m_connection), kWmiSuccess);
  OrbWmiEnumerator* made = nullptr;
  const std::uint64_t before = LiveCount(InterfaceKind::kEnumerator);
  const std::string trace = CaptureTraced([&] { EXPECT_EQ(request.ExecQuery(&made), 0U); }).out;
  EXPECT_NE(trace.find("(orbWmiClass):setQueryInstance "), std::string::npos) << trace;
  EXPECT_EQ(made->Reset(), 1U) << "forward only";
  platform::DeleteObject(made);
  EXPECT_EQ(LiveCount(InterfaceKind::kEnumerator), before + 1);
  request.cleanUp();
  EXPECT_EQ(LiveCount(InterfaceKind::kEnumerator), before);
}

} // namespace
} // namespace korvex
