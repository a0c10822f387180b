#include "tests/unit/support/wmi_test.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/orb_wmi_request.h"
#include "wmi/store_ptr.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korvex {
namespace {

const std::string kTag = "(orbWmiRequest):";

class OrbWmiRequestTest : public WmiTest {
protected:
  void SetUp() override {
    WmiTest::SetUp();
    FakeClassObject* in =
        m_wmi->NewObject({{L"Level", CIM_SINT32, EmptyValue(VT_NULL)}, {L"Name", CIM_STRING, EmptyValue(VT_NULL)}});
    FakeClassObject* out = m_wmi->NewObject({{L"Count", CIM_UINT32, EmptyValue(VT_NULL)}});
    FakeClassObject* definition =
        m_wmi->NewObject({}, {{L"Set", in, out}, {L"Ask", nullptr, out}, {L"Do", nullptr, nullptr}});
    m_wmi->classes[L"Methods"] = {definition,
                                  {m_wmi->NewObject({{L"__RELPATH", CIM_STRING, TextValue(L"Methods=\"a\"")}})}};
    m_wmi->methodOutput = m_wmi->NewObject({{L"Count", CIM_UINT32, NumberValue(4)}});
    Connect();
    ASSERT_EQ(m_class.Initialize(m_connection, L"Methods"), kWmiSuccess);
    ASSERT_EQ(m_target.Initialize(&m_class), kWmiSuccess);
    m_wmi->log.clear();
  }
  void TearDown() override {
    m_target.cleanUp();
    m_class.cleanUp();
    WmiTest::TearDown();
  }

  /// "Name(...);Variant(...)" of an argument.
  static std::string ArgumentLine(const std::string& name, const OrbWmiVariant& holder) {
    return kTag + "Name(" + name + ");Variant(0x" + Digits(&holder) + ")\n";
  }

  OrbWmiClass m_class;
  OrbWmiEnumerator m_target;
};

TEST_F(OrbWmiRequestTest, CallsAMethodWithItsArgumentsInOrder) {
  OrbWmiVariant level;
  OrbWmiVariant name;
  OrbWmiVariant count;
  const std::int32_t number = 3;
  ASSERT_EQ(level.SetProperty(&number, sizeof number, CIM_SINT32), kWmiSuccess);
  ASSERT_EQ(name.SetProperty("n", 1, CIM_STRING), kWmiSuccess);
  ASSERT_EQ(count.SetProperty("replaced", 8, CIM_STRING), kWmiSuccess);
  {
    OrbWmiRequest request;
    ASSERT_EQ(request.MethodRequest(L"Set", &m_class), kWmiSuccess);
    EXPECT_EQ(Traced([&] { return request.AddInputParameter(L"Name", &name); }),
              (Outcome{0, kTag + "RequestParam(Arg-'Name';Param-0x" + Digits(&name) + ")\n"}));
    ASSERT_EQ(request.AddInputParameter(L"Level", &level), kWmiSuccess);
    ASSERT_EQ(request.AddOutputParameter(L"Count", &count), kWmiSuccess);
    EXPECT_EQ(Traced([&] { return request.ExecMethod(&m_target); }),
              (Outcome{0, ArgumentLine("Name", name) + ArgumentLine("Level", level) + kTag + "ExecMethod()\n" +
                              ArgumentLine("Count", count) + kTag + "CimType(0x13);VarType(0x3)\n"}));
    EXPECT_EQ(CaptureTraced([&] { request.cleanUp(); }).out,
              kTag + "cleanUp(Request)\n" + kTag + "cleanUp(RequestParameter)\n" + kTag +
                  "cleanUp(RequestParameter)\n" + kTag + "cleanUp(RequestParameter)\n");
  }
  EXPECT_EQ(m_wmi->log, (std::vector<std::wstring>{L"Put Name vt 8 type 0", L"Put Level vt 3 type 0",
                                                   L"ExecMethod Methods=\"a\" Set with inputs"}));
  std::uint32_t read = 0;
  EXPECT_EQ(count.GetProperty(&read, sizeof read, CIM_UINT32), kWmiSuccess);
  EXPECT_EQ(read, 4U);
  EXPECT_EQ(level.GetVariant().lVal, 3);
}

TEST_F(OrbWmiRequestTest, SendsNoInputsToAMethodWithout) {
  OrbWmiVariant level;
  OrbWmiVariant count;
  OrbWmiVariant missing;
  OrbWmiRequest request;
  ASSERT_EQ(request.MethodRequest(L"Ask", &m_class), kWmiSuccess);
  ASSERT_EQ(request.AddInputParameter(L"Level", &level), kWmiSuccess);
  ASSERT_EQ(request.AddOutputParameter(L"Count", &count), kWmiSuccess);
  ASSERT_EQ(request.AddOutputParameter(L"Missing", &missing), kWmiSuccess);
  const std::int32_t kept = 77;
  ASSERT_EQ(missing.SetProperty(&kept, sizeof kept, CIM_SINT32), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return request.ExecMethod(&m_target); }),
            (Outcome{1, kTag + "ExecMethod()\n" + ArgumentLine("Count", count) + kTag + "CimType(0x13);VarType(0x3)\n" +
                            ArgumentLine("Missing", missing) + kTag +
                            "WmiRequestFailed(Get)-OutputParams.  Error 0x80041002\n"}));
  EXPECT_EQ(m_wmi->log, (std::vector<std::wstring>{L"ExecMethod Methods=\"a\" Ask without inputs"}));
  // The outputs before the missing one are filled, it keeps what it held.
  EXPECT_EQ(count.GetVariant().lVal, 4);
  EXPECT_EQ(missing.GetVariant().lVal, 77);
  // A method may give nothing back at all.
  m_wmi->methodOutput = nullptr;
  EXPECT_EQ(Traced([&] { return request.ExecMethod(&m_target); }), (Outcome{0, kTag + "ExecMethod()\n"}));
}

TEST_F(OrbWmiRequestTest, TellsWhichCallOfAMethodRequestFailed) {
  struct Row {
    const char* call;
    unsigned occurrence;
    const char* message;
  };
  constexpr Row kRows[] = {
      {"GetMethod", 1, "WMIRequestFailed(GetMethod).  Error "},
      {"SpawnInstance", 1, "WMIRequestFailed(SpawnInstance)-InputMethod.  Error "},
      {"SpawnInstance", 2, "WMIRequestFailed(SpawnInstance)-OutputMethod.  Error "},
      {"Put", 1, "WMIRequestFailed(Put).  Error "},
      {"Get", 1, "WMIRequestFailed(Get)-EnumeratorInstance.  Error "},
      {"ExecMethod", 1, "WMIRequestFailed(ExecMethod).  Error "},
      {"Get", 2, "WmiRequestFailed(Get)-OutputParams.  Error "},
  };
  for (const Row& row : kRows) {
    for (const auto& [result, status, code] :
         {std::tuple{platform::WbemResult(WBEM_E_ACCESS_DENIED), 9U, "0x80041003\n"},
          std::tuple{platform::WbemResult(WBEM_E_FAILED), 1U, "0x80041001\n"}}) {
      OrbWmiVariant level;
      OrbWmiVariant count;
      OrbWmiRequest request;
      ASSERT_EQ(request.MethodRequest(L"Set", &m_class), kWmiSuccess);
      ASSERT_EQ(request.AddInputParameter(L"Level", &level), kWmiSuccess);
      ASSERT_EQ(request.AddOutputParameter(L"Count", &count), kWmiSuccess);
      m_wmi->End(row.call, result, row.occurrence);
      const Outcome outcome = Traced([&] { return request.ExecMethod(&m_target); });
      EXPECT_EQ(outcome.status, status) << row.message;
      const std::string message = kTag + row.message + code;
      EXPECT_TRUE(outcome.trace.ends_with(message)) << outcome.trace;
      EXPECT_EQ(outcome.trace.find("Error"), outcome.trace.rfind("Error")) << outcome.trace;
      EXPECT_EQ(count.GetVariant().vt, VT_EMPTY);
    }
  }
  // Objects that do not come although the calls succeed.
  OrbWmiRequest request;
  ASSERT_EQ(request.MethodRequest(L"Set", &m_class), kWmiSuccess);
  for (const unsigned occurrence : {1U, 2U}) {
    m_wmi->End("SpawnInstance", S_OK, occurrence);
    EXPECT_EQ(request.ExecMethod(&m_target), 1U);
  }
}

TEST_F(OrbWmiRequestTest, NeedsAConnectionADefinitionAndATarget) {
  OrbWmiRequest unbound;
  EXPECT_EQ(Traced([&] { return unbound.ExecMethod(&m_target); }),
            (Outcome{5, kTag + "NoServiceConnection(OrbRequest)\n"}));
  OrbWmiEnumerator* results = &m_target;
  EXPECT_EQ(Traced([&] { return unbound.ExecQuery(&results); }),
            (Outcome{5, kTag + "NoServiceConnection(OrbRequest)\n"}));
  EXPECT_EQ(results, nullptr);
  EXPECT_EQ(Traced([&] { return unbound.MethodRequest(nullptr, &m_class); }),
            (Outcome{1, kTag + "WMIRequestFailed(StringCchLength)-MethodRequest.  Error 0x80070057\n"}));
  EXPECT_EQ(Traced([&] { return unbound.QueryRequest(nullptr, m_connection); }),
            (Outcome{1, kTag + "WMIRequestFailed(StringCchLength)-QueryRequest.  Error 0x80070057\n"}));

  OrbWmiClass undefined;
  ASSERT_EQ(undefined.Initialize(m_connection, nullptr), kWmiSuccess);
  OrbWmiRequest request;
  ASSERT_EQ(request.MethodRequest(L"Set", &undefined), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return request.ExecMethod(&m_target); }), (Outcome{5, kTag + "NoMethodsClass(OrbRequest)\n"}));
  ASSERT_EQ(request.MethodRequest(L"Set", &m_class), kWmiSuccess);
  const OrbWmiEnumerator nowhere;
  EXPECT_EQ(request.ExecMethod(nullptr), 5U);
  m_target.cleanUp();
  EXPECT_EQ(Traced([&] { return request.ExecMethod(&m_target); }), (Outcome{5, ""}));
}

TEST_F(OrbWmiRequestTest, RefusesArgumentsWithoutNameOrHolder) {
  OrbWmiVariant holder;
  OrbWmiRequest request;
  const std::string cleanUp = kTag + "cleanUp(RequestParameter)\n";
  EXPECT_EQ(Traced([&] { return request.AddInputParameter(nullptr, &holder); }),
            (Outcome{1, kTag + "RequestParam(Arg-'';Param-0x" + Digits(&holder) + ")\n" + kTag +
                            "WMIRequestFailed(StringCchLength).  Error 0x80070057\n" + kTag +
                            "InitializationFailure(OrbRequestParameter)-AddInputParameter\n" + cleanUp}));
  EXPECT_EQ(Traced([&] { return request.AddOutputParameter(L"Count", nullptr); }),
            (Outcome{1, kTag + "RequestParam(Arg-'Count';Param-0x0000000000000000)\n" + kTag +
                            "InitializationFailure(OrbRequestParameter)-AddOutputParameter\n" + cleanUp}));
}

TEST_F(OrbWmiRequestTest, WalksTheResultsOfAQueryOnce) {
  m_wmi->queryResults = {m_wmi->NewObject({{L"__CLASS", CIM_STRING, TextValue(L"A")}}),
                         m_wmi->NewObject({{L"__CLASS", CIM_STRING, TextValue(L"B")}})};
  OrbWmiRequest request;
  ASSERT_EQ(request.QueryRequest(L"Select * From Meta_Class", m_connection), kWmiSuccess);
  OrbWmiEnumerator* made = nullptr;
  ASSERT_EQ(request.ExecQuery(&made), kWmiSuccess);
  StorePtr<OrbWmiEnumerator> results(made);
  EXPECT_EQ(m_wmi->log, (std::vector<std::wstring>{L"WQL Select * From Meta_Class 32"}));
  char name[4] = {};
  EXPECT_EQ(results->GetProperty(L"__CLASS", name, sizeof name), kWmiSuccess);
  EXPECT_STREQ(name, "A");
  EXPECT_EQ(results->Next(), kWmiSuccess);
  EXPECT_EQ(results->GetProperty(L"__CLASS", name, sizeof name), kWmiSuccess);
  EXPECT_STREQ(name, "B");
  EXPECT_EQ(results->Next(), kWmiNoMoreData);
  results.reset();
  EXPECT_EQ(CaptureTraced([&] { request.cleanUp(); }).out, kTag + "cleanUp(Request)\n(orbWmiClass):cleanUp\n");
}

TEST_F(OrbWmiRequestTest, TracesAQueryAndItsFailures) {
  OrbWmiConnection closed;
  OrbWmiRequest request;
  EXPECT_EQ(Traced([&] { return request.QueryRequest(L"Q", closed); }),
            (Outcome{6, kTag + "InitializationFailure(OrbWmiClass)-QueryRequest\n(orbWmiClass):cleanUp\n"}));
  OrbWmiEnumerator* results = &m_target;
  EXPECT_EQ(Traced([&] { return request.ExecQuery(&results); }),
            (Outcome{5, kTag + "NoServiceConnection(OrbRequest)\n"}));
  EXPECT_EQ(request.ExecQuery(nullptr), 5U);

  ASSERT_EQ(request.QueryRequest(L"Q", m_connection), kWmiSuccess);
  for (const auto& [result, outcome] :
       {std::pair{platform::WbemResult(WBEM_E_ACCESS_DENIED), Outcome{9, "0x80041003\n"}},
        std::pair{platform::WbemResult(WBEM_E_INVALID_QUERY), Outcome{1, "0x80041017\n"}}}) {
    m_wmi->End("ExecQuery", result);
    EXPECT_EQ(Traced([&] { return request.ExecQuery(&results); }),
              (Outcome{outcome.status, kTag + "WmiRequestFailed(ExecQuery).  Error " + outcome.trace}));
    EXPECT_EQ(results, nullptr);
  }
  // Success without results.
  const std::string none = "0000000000000000";
  const std::string walker = "(orbWmiEnumerator):";
  m_wmi->End("ExecQuery", S_OK);
  EXPECT_EQ(Traced([&] { return request.ExecQuery(&results); }),
            (Outcome{1, kTag + "enumClassObject " + none + "\n(orbWmiClass):setQueryInstance " + none + "\n" + walker +
                            "m_ClassObjectEnumerator " + none + ";m_IsCloned 0x0\n" + walker +
                            "InitializationFailure(OrbWmiEnumerator)->Initialize\n" + walker + "cleanUp\n" + kTag +
                            "InitializationFailed(OrbWmiEnumerator)-ExecQuery\n"}));
  EXPECT_EQ(results, nullptr);

  const Outcome outcome = Traced([&] { return request.ExecQuery(&results); });
  const StorePtr<OrbWmiEnumerator> owned(results);
  const std::string begin = kTag + "enumClassObject ";
  ASSERT_EQ(outcome.trace.substr(0, begin.size()), begin);
  const std::string pointer = outcome.trace.substr(begin.size(), 16);
  EXPECT_EQ(outcome, (Outcome{0, begin + pointer + "\n(orbWmiClass):setQueryInstance " + pointer +
                                     "\n(orbWmiEnumerator):m_ClassObjectEnumerator " + pointer +
                                     ";m_IsCloned 0x0\n(orbWmiEnumerator):Next m_ClassObjectInstance "
                                     "0000000000000000\n"}));
}

TEST_F(OrbWmiRequestTest, NeedsATextForAQuery) {
  OrbWmiRequest request;
  ASSERT_EQ(request.MethodRequest(L"Set", &m_class), kWmiSuccess);
  request.cleanUp();
  OrbWmiEnumerator* results = nullptr;
  // The methods class is the caller's and still there; the text is gone.
  EXPECT_EQ(Traced([&] { return request.ExecQuery(&results); }), (Outcome{5, kTag + "NoRequestDefined(OrbRequest)\n"}));
}

} // namespace
} // namespace korvex
