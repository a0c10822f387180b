#include "tests/unit/support/wmi_test.h"
#include "wmi/orb_wmi_class.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

class OrbWmiClassTest : public WmiTest {
protected:
  void SetUp() override {
    WmiTest::SetUp();
    FakeClassObject* signature = m_wmi->NewObject({});
    FakeClassObject* definition =
        m_wmi->NewObject({{L"__CLASS", CIM_STRING, TextValue(L"C")}, {L"Level", CIM_UINT32, NumberValue(1)}},
                         {{L"GetLevel", signature, signature}, {L"SetTheLevelOfAll", nullptr, nullptr}});
    m_wmi->classes[L"C"] = {definition, {m_wmi->NewObject({}), m_wmi->NewObject({})}};
  }

  void TearDown() override {
    m_class.cleanUp();
    WmiTest::TearDown();
  }

  OrbWmiClass m_class;
};

TEST_F(OrbWmiClassTest, NeedsAnOpenConnection) {
  EXPECT_EQ(Traced([&] { return m_class.Initialize(m_connection, L"C"); }), (Outcome{6, ""}));
  EXPECT_EQ(m_class.GetServices(), nullptr);
  Connect();
  EXPECT_EQ(Traced([&] { return m_class.Initialize(m_connection, nullptr); }), (Outcome{0, ""}));
  EXPECT_EQ(m_class.GetServices(), m_connection.GetServices());
  EXPECT_EQ(m_class.GetInstanceClass(), nullptr);
  EXPECT_EQ(Traced([&] { return m_class.Initialize(m_connection, L"C"); }), (Outcome{0, ""}));
  EXPECT_EQ(m_class.GetInstanceClass(), m_wmi->classes[L"C"].definition);
  EXPECT_EQ(Traced([&] { return m_class.Initialize(m_connection, L"Unknown"); }),
            (Outcome{3, "(orbWmiClass):WMIRequestFailed(GetObject).  Error 0x80041002\n"}));
}

TEST_F(OrbWmiClassTest, TellsWhyItCannotBeBound) {
  struct Row {
    const char* call;
    HRESULT result;
    Outcome outcome;
  };
  const Row rows[] = {
      {"GetObject",
       platform::WbemResult(WBEM_E_ACCESS_DENIED),
       {9, "(orbWmiClass):WMIRequestFailed(GetObject).  Error 0x80041003\n"}},
      {"GetObject", E_ACCESSDENIED, {1, "(orbWmiClass):WMIRequestFailed(GetObject).  Error 0x80070005\n"}},
      {"GetObject", S_OK, {1, "(orbWmiClass):WMIRequestFailed(GetObject).  Error 0x0\n"}},
      {"CreateInstanceEnum",
       platform::WbemResult(WBEM_E_ACCESS_DENIED),
       {9, "(orbWmiClass):WMIRequestFailed(CreateInstanceEnum).  Error 0x80041003\n"}},
      {"CreateInstanceEnum",
       platform::WbemResult(WBEM_E_NOT_FOUND),
       {1, "(orbWmiClass):WMIRequestFailed(CreateInstanceEnum).  Error 0x80041002\n"}},
      {"CreateInstanceEnum", S_OK, {1, "(orbWmiClass):WMIRequestFailed(CreateInstanceEnum).  Error 0x0\n"}},
  };
  Connect();
  for (const Row& row : rows) {
    m_wmi->End(row.call, row.result);
    EXPECT_EQ(Traced([&] { return m_class.Initialize(m_connection, L"C"); }), row.outcome);
  }
}

TEST_F(OrbWmiClassTest, ClonesItsInstancesButSharesAQuerys) {
  Connect();
  std::uint8_t isCloned = 1;
  EXPECT_EQ(m_class.GetInstanceEnumerator(isCloned), nullptr);
  EXPECT_EQ(isCloned, 0);
  ASSERT_EQ(m_class.Initialize(m_connection, L"C"), kWmiSuccess);
  platform::ComPtr<IEnumWbemClassObject> first(m_class.GetInstanceEnumerator(isCloned));
  EXPECT_EQ(isCloned, 1);
  const platform::ComPtr<IEnumWbemClassObject> second(m_class.GetInstanceEnumerator(isCloned));
  EXPECT_NE(first.get(), second.get());
  for (const HRESULT result : {E_FAIL, S_OK}) {
    m_wmi->End("EnumClone", result);
    const Outcome outcome =
        Traced([&] { return m_class.GetInstanceEnumerator(isCloned) == nullptr ? kWmiRequestFailed : kWmiSuccess; });
    EXPECT_EQ(outcome, (Outcome{1, std::string("(orbWmiClass):WMIRequestFailed(GetInstanceEnumerator)-Clone.  Error ") +
                                       (result == S_OK ? "0x0\n" : "0x80004005\n")}));
    EXPECT_EQ(isCloned, 0);
  }

  EXPECT_EQ(m_class.IsQueryInstance(), 0);
  IEnumWbemClassObject* results = first.detach();
  EXPECT_EQ(CaptureTraced([&] { m_class.setQueryInstance(results); }).out,
            "(orbWmiClass):setQueryInstance " + Digits(results) + "\n");
  EXPECT_EQ(m_class.IsQueryInstance(), 1);
  isCloned = 1;
  EXPECT_EQ(m_class.GetInstanceEnumerator(isCloned), results);
  EXPECT_EQ(isCloned, 0);
  EXPECT_EQ(CaptureTraced([&] { m_class.cleanUp(); }).out, "(orbWmiClass):cleanUp\n");
}

TEST_F(OrbWmiClassTest, IteratesNames) {
  char name[11] = {};
  Connect();
  ASSERT_EQ(m_class.Initialize(m_connection, L"C"), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return m_class.ResetMethodName(name, sizeof name); }), (Outcome{0, ""}));
  EXPECT_STREQ(name, "GetLevel");
  name[10] = '#';
  EXPECT_EQ(m_class.NextMethodName(name, 10), 0U);
  EXPECT_EQ(std::string(name, sizeof name), std::string("SetTheLev\0#", 11));
  EXPECT_EQ(m_class.NextMethodName(name, sizeof name), 2U);
  EXPECT_EQ(m_class.ResetMethodName(name, sizeof name), 0U);
  EXPECT_STREQ(name, "GetLevel");

  EXPECT_EQ(m_class.ResetPropertyName(name, sizeof name), 0U);
  EXPECT_STREQ(name, "__CLASS");
  EXPECT_EQ(m_class.NextPropertyName(name, sizeof name), 0U);
  EXPECT_STREQ(name, "Level");
  EXPECT_EQ(m_class.NextPropertyName(name, sizeof name), 2U);
  EXPECT_STREQ(name, "Level");
}

TEST_F(OrbWmiClassTest, TellsWhyThereIsNoName) {
  const std::string prefix = "(orbWmiClass):";
  char name[20];
  EXPECT_EQ(Traced([&] { return m_class.ResetMethodName(name, sizeof name); }),
            (Outcome{5, prefix + "InstanceClassNotDefined(ResetMethodName)\n"}));
  EXPECT_EQ(Traced([&] { return m_class.NextMethodName(name, sizeof name); }),
            (Outcome{5, prefix + "InstanceClassNotDefined(NextMethodName)\n"}));
  EXPECT_EQ(Traced([&] { return m_class.ResetPropertyName(name, sizeof name); }),
            (Outcome{5, prefix + "InstanceClassNotDefined(ResetPropertyName)\n"}));
  EXPECT_EQ(Traced([&] { return m_class.NextPropertyName(name, sizeof name); }),
            (Outcome{5, prefix + "InstanceClassNotDefined(NextPropertyName)\n"}));
  Connect();
  ASSERT_EQ(m_class.Initialize(m_connection, L"C"), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return m_class.NextMethodName(nullptr, 20); }),
            (Outcome{5, prefix + "BufferNotDefined(NextMethodName)\n"}));
  EXPECT_EQ(Traced([&] { return m_class.ResetPropertyName(nullptr, 20); }),
            (Outcome{5, prefix + "BufferNotDefined(NextPropertyName)\n"}));

  struct Row {
    HRESULT result;
    wmiReturn status;
    bool isUnnamed;
  };
  const Row rows[] = {
      {platform::WbemResult(WBEM_E_FAILED), 1, false},
      {platform::WbemResult(WBEM_E_TRANSPORT_FAILURE), 1, false},
      {platform::WbemResult(WBEM_E_INVALID_PARAMETER), 5, false},
      {platform::WbemResult(WBEM_E_UNEXPECTED), 5, false},
      {platform::WbemResult(WBEM_E_OUT_OF_MEMORY), 4, false},
      {platform::WbemResult(WBEM_S_NO_MORE_DATA), 2, false},
      {platform::WbemResult(WBEM_E_ACCESS_DENIED), 1, true},
      {S_OK, 1, true},
  };
  for (const Row& row : rows) {
    m_wmi->End("NextMethod", row.result);
    EXPECT_EQ(Traced([&] { return m_class.NextMethodName(name, sizeof name); }),
              (Outcome{row.status, row.isUnnamed ? prefix + "PropertyNameNull(NextMethodName)\n" : ""}))
        << row.result;
    m_wmi->End("Next", row.result);
    EXPECT_EQ(Traced([&] { return m_class.NextPropertyName(name, sizeof name); }), (Outcome{row.status, ""}))
        << row.result;
  }
}

TEST_F(OrbWmiClassTest, GoesOnWithAnIterationThatHasBegun) {
  constexpr std::pair<const char*, wmiReturn (OrbWmiClass::*)(char*, std::uint32_t)> kResets[] = {
      {"BeginMethodEnumeration", &OrbWmiClass::ResetMethodName},
      {"BeginEnumeration", &OrbWmiClass::ResetPropertyName},
  };
  Connect();
  ASSERT_EQ(m_class.Initialize(m_connection, L"C"), kWmiSuccess);
  for (const auto& [call, reset] : kResets) {
    char name[20] = {};
    m_wmi->End(call, platform::WbemResult(WBEM_E_UNEXPECTED));
    EXPECT_EQ((m_class.*reset)(name, sizeof name), 0U) << call;
    m_wmi->End(call, platform::WbemResult(WBEM_E_FAILED));
    EXPECT_EQ((m_class.*reset)(name, sizeof name), 1U) << call;
  }
}

} // namespace
} // namespace korvex
