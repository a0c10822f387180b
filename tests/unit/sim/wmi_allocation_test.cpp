#include "platform/posix/machine.h"
#include "tests/unit/support/fake_locator.h"
#include "tests/unit/support/wmi_test.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_array_enumerator.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_common.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/orb_wmi_request.h"
#include "wmi/store_ptr.h"

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace korvex {
namespace {

/// What the platform refuses to the layer. Nothing may be left behind by what was refused.
class WmiAllocationTest : public WmiTest {
protected:
  void SetUp() override {
    m_liveBefore = platform::CountLiveObjects();
    m_storesBefore = LiveStores();
    WmiTest::SetUp();
    m_wmi->classes[L"C"] = {
        m_wmi->NewObject({}, {{L"Set", m_wmi->NewObject({{L"In", CIM_UINT32, EmptyValue(VT_NULL)}}), nullptr}}),
        {m_wmi->NewObject({{L"__RELPATH", CIM_STRING, TextValue(L"C=@")},
                           {L"Name", CIM_STRING, TextValue(L"n")},
                           {L"Part", CIM_OBJECT, ObjectValue(m_wmi->NewObject({}))},
                           {L"List", static_cast<CIMTYPE>(kCimObjectArray), ObjectsValue({m_wmi->NewObject({})})}})}};
    m_wmi->methodOutput = m_wmi->NewObject({{L"Out", CIM_UINT32, NumberValue(1)}});
    Connect();
    ASSERT_EQ(m_class.Initialize(m_connection, L"C"), kWmiSuccess);
    ASSERT_EQ(m_instances.Initialize(&m_class), kWmiSuccess);
  }
  void TearDown() override {
    m_instances.cleanUp();
    m_class.cleanUp();
    WmiTest::TearDown();
    const platform::LiveObjects live = platform::CountLiveObjects();
    EXPECT_EQ(live.bstrs, m_liveBefore.bstrs);
    EXPECT_EQ(live.safeArrays, m_liveBefore.safeArrays);
    EXPECT_EQ(LiveStores(), m_storesBefore);
  }

  static std::map<std::string, std::uint64_t> LiveStores() {
    std::map<std::string, std::uint64_t> stores;
    platform::VisitLiveStores(
        [](const char* name, std::uint64_t count, void* context) {
          (*static_cast<std::map<std::string, std::uint64_t>*>(context))[name] = count;
        },
        &stores);
    return stores;
  }

  /// Carries `operation` out while the platform refuses one call, and holds the status and the end of its trace.
  void ExpectRefused(const char* call, const char* target, const std::function<wmiReturn()>& operation,
                     wmiReturn status, const std::string& trace, unsigned occurrence = 1) {
    AddPlatformFault(call, target, 0x8007000E, occurrence);
    const Outcome outcome = Traced(operation);
    EXPECT_EQ(outcome.status, status) << call << " " << target;
    EXPECT_TRUE(outcome.trace.ends_with(trace)) << outcome.trace << "instead of\n" << trace;
  }

  OrbWmiClass m_class;
  OrbWmiEnumerator m_instances;
  platform::LiveObjects m_liveBefore{};
  std::map<std::string, std::uint64_t> m_storesBefore;
};

TEST_F(WmiAllocationTest, RefusedConversions) {
  const Value text = TextValue(L"abc");
  char buffer[8] = "#######";
  const std::string common = "(orbWmiCommon):";
  ExpectRefused(
      "AllocateStore", "GetVariantData",
      [&] { return OrbWmiCommon::GetVariantData(text->get(), buffer, sizeof buffer, CIM_STRING); }, 4,
      common + "MemoryAllocationFailed(malloc)-GetVariantData\n");
  EXPECT_STREQ(buffer, "#######");
  const auto write = [&] { return OrbWmiCommon::SetVariantType(text->get(), "xyz", 3, CIM_STRING); };
  ExpectRefused("AllocateStore", "SetVariantType", write, 4,
                common + "MemoryAllocationFailed(malloc)-SetVariantType\n");
  ExpectRefused("SysAllocString", "xyz", write, 4, common + "SetVariantType(0x8);cimType(0x8)\n");
  EXPECT_EQ(std::wstring(text->get().bstrVal), L"abc");

  const Value object = ObjectValue(m_wmi->methodOutput);
  platform::Variant copy;
  ExpectRefused(
      "VariantCopy", "",
      [&] { return OrbWmiCommon::GetVariantData(object->get(), &copy.get(), sizeof(VARIANT), CIM_OBJECT); }, 1,
      common + "WMIRequestFailed(VariantCopy).  Error 0x8007000e\n");
  const Value bytes = BytesValue("abc");
  const auto read = [&] { return OrbWmiCommon::GetVariantData(bytes->get(), buffer, sizeof buffer, 0x2011); };
  constexpr std::pair<const char*, const char*> kCalls[] = {
      {"SafeArrayGetLBound", "(orbWmiCommon):WMIRequestFailed(SafeArrayGetLBound).  Error 0x8007000e\n"},
      {"SafeArrayGetUBound", "(orbWmiCommon):WMIRequestFailed(SafeArrayGetUBound).  Error 0x8007000e\n"},
      {"SafeArrayAccessData", "(orbWmiCommon):WMIRequestFailed(SafeArrayAccessData).  Error 0x8007000e\n"},
  };
  for (const auto& [call, trace] : kCalls) {
    ExpectRefused(call, "", read, 1, trace);
  }
  EXPECT_STREQ(buffer, "#######");
}

TEST_F(WmiAllocationTest, RefusedElements) {
  OrbWmiVariant holder;
  ASSERT_EQ(holder.CopyVariant(ObjectsValue({m_wmi->methodOutput})->get()), kWmiSuccess);
  platform::ComPtr<IWbemClassObject> element;
  const auto take = [&] { return holder.GetElement(0, element.put()); };
  constexpr std::pair<const char*, const char*> kCalls[] = {
      {"SafeArrayGetUBound", "(orbWmiVariant):WMIRequestFailed(SafeArrayGetUBound).  Error 0x8007000e\n"},
      {"SafeArrayGetLBound", "(orbWmiVariant):WMIRequestFailed(SafeArrayGetLBound).  Error 0x8007000e\n"},
      {"SafeArrayAccessData", "(orbWmiVariant):WMIRequestFailed(SafeArrayAccessData).  Error 0x8007000e\n"},
  };
  for (const auto& [call, trace] : kCalls) {
    ExpectRefused(call, "", take, 1, trace);
    EXPECT_FALSE(element);
  }
  OrbWmiArrayEnumerator builder;
  ExpectRefused(
      "SafeArrayCreate", "", [&] { return builder.Initialize(&m_class, 3); }, 4,
      "(orbWmiEnumerator):MemoryAllocationFailed(OrbWmiArrayEnumerator)-SafeArrayCreate\n");
}

TEST_F(WmiAllocationTest, RefusedStartUp) {
  ExpectRefused(
      "CoInitializeSecurity", "", [] { return OrbWmiCommon::InitializeSecurity(); }, 1,
      "(orbWmiCommon):WMIRequestFailed(CoInitializeSecurity).  Error 0x8007000e\n");
  OrbWmiConnection connection;
  ExpectRefused(
      "SysAllocString", "root\\WMI", [&] { return connection.Initialize(L"root\\WMI"); }, 4,
      "(orbWmiConnection):MemoryAllocationFailed(SysAllocString)\n");
  ExpectRefused(
      "CoCreateInstance", "", [&] { return connection.Initialize(L"root\\WMI"); }, 6,
      "(orbWmiConnection):WMIRequestFailed(CoCreateInstance).  Error 0x8007000e\n");
  OrbWmiClass other;
  ExpectRefused(
      "SysAllocString", "C", [&] { return other.Initialize(m_connection, L"C"); }, 4,
      "(orbWmiClass):MemoryAllocationFailed(SysAllocString)\n");
  // The credentials stay as they were, whichever copy is refused.
  ASSERT_EQ(other.SetCredentials(L"", L"old", L"", 0, 0), kWmiSuccess);
  for (const unsigned occurrence : {1U, 2U, 3U}) {
    ExpectRefused(
        "AllocateStore", "OrbWmiClass credentials", [&] { return other.SetCredentials(L"", L"new", L"secret", 0, 0); },
        4, "", occurrence);
  }
  ASSERT_EQ(m_connection.SetSecurity(), kWmiSuccess);
  ASSERT_EQ(other.Initialize(m_connection, L"C"), kWmiSuccess);
  EXPECT_EQ(m_wmi->log.back(), L"SetBlanket 10 0 0 0 0 old@(none): flags 2");
}

TEST_F(WmiAllocationTest, RefusedEmbeddedEnumerators) {
  OrbWmiEnumerator* made = nullptr;
  const std::string tag = "(orbWmiEnumerator):";
  const std::string cleanUp = tag + "cleanUp\n";
  const auto list = [&] { return m_instances.InitArrayEnumerator(&m_class, L"List", &made); };
  const auto refuse = [&](const char* call, const char* target, const auto& operation, wmiReturn status,
                          const std::string& trace, unsigned occurrence = 1) {
    made = &m_instances;
    ExpectRefused(call, target, operation, status, trace, occurrence);
    EXPECT_EQ(made, nullptr) << call << " " << target;
  };
  refuse("AllocateStore", "OrbWmiEnumerator", list, 4,
         tag + "MemoryAllocationFailed(OrbWmiEnumerator)-InitArrayEnumerator\n");
  refuse("AllocateStore", "InitArrayEnumerator", list, 4,
         tag + "MemoryAllocationFailed(malloc)-InitArrayEnumerator\n" + cleanUp);
  refuse("SysAllocString", "List", list, 4,
         tag + "MemoryAllocationFailed(SysAllocString)-InitArrayEnumerator\n" + cleanUp);
  refuse("AllocateStore", "OrbWmiVariant", list, 4,
         tag + "MemoryAllocationFailed(OrbWmiVariant)-InitArrayEnumerator\n" + cleanUp);
  // The first copy is the service's own; a list that could not be copied is no empty list.
  refuse("VariantCopy", "", list, 1, "(orbWmiVariant):WMIRequestFailed(VariantCopy).  Error 0x8007000e\n" + cleanUp, 2);
  refuse(
      "AllocateStore", "OrbWmiEnumerator", [&] { return m_instances.InitUnknownEnumerator(L"Part", &made); }, 4,
      tag + "MemoryAllocationFailed(OrbWmiEnumerator)-InitUnknownEnumerator\n");
}

TEST_F(WmiAllocationTest, RefusedRequests) {
  const std::string tag = "(orbWmiRequest):";
  OrbWmiVariant holder;
  OrbWmiRequest request;
  const auto describe = [&] { return request.MethodRequest(L"Set", &m_class); };
  ExpectRefused("AllocateStore", "MethodRequestParamInitialize", describe, 4,
                tag + "MemoryAllocationFailed(malloc)-MethodRequestParamInitialize\n");
  ASSERT_EQ(describe(), kWmiSuccess);
  const auto addInput = [&] { return request.AddInputParameter(L"In", &holder); };
  const auto addOutput = [&] { return request.AddOutputParameter(L"Out", &holder); };
  ExpectRefused("AllocateStore", "OrbRequestParameter", addInput, 4,
                tag + "MemoryAllocationFailed(OrbRequestParameter)-AddInputParameter\n");
  ExpectRefused("AllocateStore", "OrbRequestParameter", addOutput, 4,
                tag + "MemoryAllocationFailed(OrbRequestParameter)-AddOutputParameter\n");
  ExpectRefused("AllocateStore", "RequestParamInitialize", addInput, 4,
                "(orbWmiRequest):MemoryAllocationFailed(malloc)-RequestParamInitialize\n"
                "(orbWmiRequest):InitializationFailure(OrbRequestParameter)-AddInputParameter\n"
                "(orbWmiRequest):cleanUp(RequestParameter)\n");
  ExpectRefused("AllocateStore", "RequestParamInitialize", addOutput, 4,
                "(orbWmiRequest):MemoryAllocationFailed(malloc)-RequestParamInitialize\n"
                "(orbWmiRequest):InitializationFailure(OrbRequestParameter)-AddOutputParameter\n"
                "(orbWmiRequest):cleanUp(RequestParameter)\n");
  ASSERT_EQ(addInput(), kWmiSuccess);
  ASSERT_EQ(addOutput(), kWmiSuccess);
  const auto execute = [&] { return request.ExecMethod(&m_instances); };
  ExpectRefused("SysAllocString", "Set", execute, 4, tag + "MemoryAllocationFailed(SysAllocString)-MethodName\n");
  ExpectRefused("SysAllocString", "In", execute, 4,
                tag + "MemoryAllocationFailed(SysAllocString)-GetInputArgumentName\n");
  ExpectRefused("SysAllocString", "Out", execute, 4, tag + "MemoryAllocationFailed(SysAllocString)-.\n");
  ASSERT_EQ(execute(), kWmiSuccess);
}

TEST_F(WmiAllocationTest, RefusedQueries) {
  const std::string tag = "(orbWmiRequest):";
  OrbWmiRequest request;
  const auto describe = [&] { return request.QueryRequest(L"Q", m_connection); };
  ExpectRefused("AllocateStore", "QueryRequestParamInitialize", describe, 4,
                tag + "MemoryAllocationFailed(malloc)-QueryRequestParamInitialize\n");
  ExpectRefused("AllocateStore", "OrbWmiClass", describe, 4,
                tag + "MemoryAllocationFailed(OrbWmiClass)-QueryRequest\n");
  ASSERT_EQ(describe(), kWmiSuccess);
  OrbWmiEnumerator* results = &m_instances;
  const auto execute = [&] { return request.ExecQuery(&results); };
  ExpectRefused("SysAllocString", "WQL", execute, 4, "");
  ExpectRefused("SysAllocString", "Q", execute, 4, "");
  ExpectRefused("AllocateStore", "OrbWmiEnumerator", execute, 4,
                tag + "MemoryAllocationFailed(OrbWmiEnumerator)-ExecQuery\n");
  EXPECT_EQ(results, nullptr);
  ASSERT_EQ(execute(), kWmiSuccess);
  platform::DeleteObject(results);
}

} // namespace
} // namespace korvex
