#include "app/channel/dsm_selection.h"
#include "tests/unit/sim/channel_host.h"
#include "tests/unit/support/capture.h"

namespace korvex {
namespace {

using simhost::CimValue;

class InstalledDsmsTest : public ChannelHost {
protected:
  void Open(const std::string& faults = "[]") {
    Begin(faults);
    m_count = 0;
    AddVersion(L"1.0.0");
    ASSERT_TRUE(StartChannel());
  }

  /// A class with this method whose instance tells this DsmName.
  void AddDsm(const CimValue& name, CIMTYPE type = CIM_STRING, const wchar_t* method = L"VrxOptionControlRequest",
              const std::wstring& className = {}) {
    simhost::CimClass definition;
    definition.name = className.empty() ? L"DSM" + std::to_wstring(m_count++) : className;
    definition.properties = {simhost::Property(L"DsmName", type)};
    definition.methods = {{L"SomethingElse", {}, {}}, {method, {}, {}}};
    AddClass(std::move(definition), [name](simhost::CimObject& instance) { instance.Set(L"DsmName", name); });
  }

  /// What is printed on standard output; `isListed` is the result.
  static CapturedOutput List(bool isListed = true) {
    return Capture([&] { EXPECT_EQ(ListInstalledDsms(), isListed); });
  }

private:
  int m_count = 0;
};

const std::string kHead = "DSM's installed\n===============\n";

TEST_F(InstalledDsmsTest, ListsEachNameOnceInOrder) {
  Open();
  AddDsm(L"oemdsm");
  AddDsm(L"OEMDSM");
  AddDsm(L"ZelmpxDSM");
  AddDsm(L"zelmpxdsm");
  AddDsm(L"ninedsm78");
  AddDsm(L"tendsm789A");
  AddDsm(L"tendsm789a");
  AddDsm(L"elevendsm78");
  AddDsm(CimValue());
  AddDsm(L"dsm\x20AC");
  AddDsm(L"dsm\xE9");
  AddDsm(L"hidden", CIM_STRING, L"vrxOptionControlRequest");
  AddDsm(L"hidden", CIM_STRING, L"VrxOptionControlRequestEx");
  AddDsm(L"hidden", CIM_STRING, (L"VrxOptionControlRequest" + std::wstring(300, L'x')).c_str());
  AddDsm(L"hidden", CIM_STRING, L"VrxOptionControlRequest", std::wstring(65, L'C'));
  AddDsm(L"shown", CIM_STRING, L"VrxOptionControlRequest", std::wstring(64, L'D'));
  AddDsm(CimValue::Bytes(std::vector<std::uint8_t>(11, 'b')), CIM_UINT8 | CIM_FLAG_ARRAY);
  simhost::CimClass derived;
  derived.name = L"DERIVED";
  derived.superclass = L"DSM0";
  Classes().AddClass(std::move(derived));
  // A stored name keeps 9 characters and is compared as it is kept, so a name of 10 is never found again.
  EXPECT_EQ(List().out,
            kHead + "oemdsm\nZelmpxDSM (default)\nninedsm78\ntendsm789\ntendsm789\ndsm\xE9\nshown\nbbbbbbbbb\n");
}

TEST_F(InstalledDsmsTest, KeepsSixteenNames) {
  Open();
  std::string expected = kHead;
  for (int number = 0; number < 20; ++number) {
    AddDsm((L"dsm" + std::to_wstring(number)).c_str());
    expected += number < 16 ? "dsm" + std::to_string(number) + "\n" : "";
  }
  AddDsm(L"zelmpxdsm");
  EXPECT_EQ(List().out, expected);
}

TEST_F(InstalledDsmsTest, PassesOverClassesThatFail) {
  for (const char* faults : {R"([{"operation": "GetObject", "target": "DSM0", "give": "access denied"}])",
                             R"([{"operation": "CreateInstanceEnum", "target": "DSM0", "give": "failed"}])",
                             R"([{"operation": "Clone", "target": "DSM0", "give": "failed"}])",
                             R"([{"operation": "Next", "target": "DSM0", "give": "failed"}])",
                             R"([{"operation": "BeginMethodEnumeration", "target": "DSM0", "give": "failed"}])",
                             R"([{"operation": "NextMethod", "target": "DSM0", "give": "failed"}])",
                             R"([{"operation": "Get", "target": "DSM0.DsmName", "give": "failed"}])",
                             R"([{"operation": "Get", "target": "DSM0.__CLASS", "give": "failed"}])"}) {
    Open(faults);
    AddDsm(L"firstdsm");
    AddDsm(L"seconddsm");
    const CapturedOutput output = List();
    EXPECT_EQ(output.out, kHead + "seconddsm\n") << faults;
    EXPECT_EQ(output.err, "") << faults;
  }
}

TEST_F(InstalledDsmsTest, PrintsTheHeadAloneWithoutADsm) {
  Open();
  EXPECT_EQ(List().out, kHead);
  EXPECT_EQ(gDsmChannel->connection.IsConnected(), 0);
  // Ends early at a failing step of the walk.
  Open(R"([{"operation": "Next", "target": "Meta_Class", "occurrence": 2, "give": "failed"}])");
  AddDsm(L"oemdsm");
  EXPECT_EQ(List().out, kHead);
}

TEST_F(InstalledDsmsTest, ReportsAQueryThatCannotBeMade) {
  const struct {
    const char* faults;
    const char* printed;
  } cases[] = {
      {R"([{"operation": "ConnectServer", "occurrence": 2, "give": "failed"}])",
       "Unable to initialize WMI connection.\n"},
      {R"([{"operation": "CoSetProxyBlanket", "occurrence": 3, "give": "failed"}])", "Unable to set proxy blanket.\n"},
      {R"([{"operation": "AllocateStore", "target": "metaClass request", "give": "out of memory"}])",
       "Unable to allocate metaClass request.\n"},
      {R"([{"operation": "AllocateStore", "target": "OrbWmiClass", "give": "out of memory"}])",
       "Error initializing metaClass request.\n"},
      {R"([{"operation": "ExecQuery", "give": "access denied"}])", "Error executing metaClass request.\n"},
      {R"([{"operation": "Next", "target": "Meta_Class", "occurrence": 1, "give": "failed"}])",
       "Error executing metaClass request.\n"},
  };
  for (const auto& row : cases) {
    Open(row.faults);
    AddDsm(L"oemdsm");
    const CapturedOutput output = List(false);
    EXPECT_EQ(output.err, row.printed) << row.faults;
    EXPECT_EQ(output.out, "") << row.faults;
  }
}

TEST_F(InstalledDsmsTest, TracesWhatItFinds) {
  Open();
  AddDsm(L"oemdsm");
  gTraceEnabled = true;
  // The system's own classes come first.
  const std::string traced = List().err;
  const std::size_t own = traced.find("MetaClass=VRXDSM_MOF\n");
  ASSERT_NE(own, std::string::npos) << traced;
  EXPECT_EQ(traced.substr(own), "MetaClass=VRXDSM_MOF\n"
                                "MetaClass=DSM0\n"
                                "DsmWmiClass found='DSM0'\n"
                                "DsmName=oemdsm\n");
}

} // namespace
} // namespace korvex
