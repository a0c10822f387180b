#include "app/channel/dsm_selection.h"
#include "app/channel/ioctl.h"
#include "tests/unit/sim/channel_host.h"

#include <vector>

// What the command line cannot show of the channel: its trace before the first option is acted on, requests that no
// option sends, and drivers that no description makes.

namespace korvex {
namespace {

class Channel : public ChannelHost {};

const std::string kMethodsClass = "Init connection\nClass init\nWMI_METHODS name 'ZELMPXDSM_WMI_METHODS_V2'\n";

TEST_F(Channel, TracesItsStart) {
  const std::string names = "Requested DSM 'ZELMPXDSM'\n"
                            "Default OEMDSM_MOF 'ZELMPXDSM';'ZELMPXDSM_'\n"
                            "Class init\n"
                            "gDsmMOFClassName name 'ZELMPXDSM_'\n"
                            "localDsmMOFVersionFileName name 'VRXDSM_MOF used to gather MOF version'\n";
  Begin();
  EXPECT_EQ(Traced(true, StartChannel), names + "Requested DSM 'ZELMPXDSM'\n"
                                                "Default WMI_METHODS_NAME_V2 'ZELMPXDSM';'ZELMPXDSM_WMI_METHODS_V2'\n"
                                                "Init succeeded\n");
  // Nothing is kept open.
  EXPECT_EQ(gDsmChannel->connection.IsConnected(), 0);

  // COM that runs already is only traced. Without the version class the generation is 1.
  Begin(R"("interfaceVersion": false)");
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  EXPECT_EQ(Traced(true, StartChannel), "Library init failed\n" + names +
                                            "Default WMI_METHODS_NAME 'ZELMPXDSM';'ZELMPXDSM_WMI_METHODS'\n"
                                            "Init succeeded\n");
  CoUninitialize();

  Begin(R"("faults": [{"operation": "CoInitializeSecurity", "give": "failed"}])");
  EXPECT_EQ(Traced(false, StartChannel), "Security init failed\n");
}

TEST_F(Channel, KeepsOfTheDriverVersionWhatCouldBeRead) {
  const std::string dsm = kMethodsClass + "utilGetDsmDriverVersion: Requested DSM 'ZELMPXDSM'\n";
  const std::string sent = "Ioctl(0x4df1)\n"
                           "OutputEnumerator init - 'DSMVersion'\n"
                           "UtilOutputParameter called 0x4df1\n"
                           "UtilOutputParameter returned 0x0\n"
                           "Execute method - 'VrxDsmGetDriverVersion'\n";
  const std::string received = sent + "UtilReturnParameter called 0x4df1\n"
                                      "UtilReturnParameter returned 0x0\n"
                                      "ioctl return (0x1)\n";
  using Numbers = std::vector<std::uint32_t>;
  const struct {
    const char* fault;
    int result;
    Numbers numbers;
    std::string trace;
  } rows[] = {
      {R"("operation": "Get", "target": "VRXDSM_VERSION.ProductBuild", "give": "failed")",
       1,
       {1, 2, 0, 4},
       dsm + received},
      {R"("operation": "Get", "target": "DsmContext", "give": "failed")",
       1,
       {1, 2, 3, 4},
       dsm + "utilGetDsmDriverVersion: Get Requested DSM 'ZELMPXDSM' failed status 1\n" + received},
      {R"("operation": "ExecMethod", "give": "failed")",
       1,
       {0, 0, 0, 0},
       dsm + sent + "ioctl return (0xffffffff)\nError initializing versionClass enum\n"},
      {R"("operation": "GetObject", "target": "VRXDSM_VERSION", "give": "not found")",
       1,
       {0, 0, 0, 0},
       dsm + received + "Error initializing DSM_VERSION class\n"},
      {R"("operation": "Clone", "target": "ZELMPXDSM_WMI_METHODS_V2", "give": "failed")",
       0,
       {0, 0, 0, 0},
       kMethodsClass + "utilGetDsmDriverVersion: Unable to initialize OrbWmi enumerator. wmiReturn = 1\n"},
  };
  for (const auto& row : rows) {
    Begin(std::string(R"("faults": [{)") + row.fault + "}]");
    ASSERT_TRUE(StartChannel());
    EXPECT_EQ(Traced(row.result, utilGetDsmDriverVersion), row.trace);
    const Numbers numbers = {gDsmVersion->MajorVersion, gDsmVersion->MinorVersion, gDsmVersion->ProductBuild,
                             gDsmVersion->QfeNumber};
    EXPECT_EQ(numbers, row.numbers) << row.fault;
  }
}

TEST_F(Channel, TouchesNothingForCodesThatCannotBeSent) {
  Begin();
  ASSERT_TRUE(StartChannel());
  ASSERT_TRUE(utilDetermineBusFd());
  EXPECT_EQ(Traced(kIoctlFailed, [] { return Ioctl(0x4D04, nullptr); }), "Ioctl(0x4d04)\n");
  // A number with no place to put it.
  EXPECT_EQ(Ioctl(0x4DF4, nullptr), kIoctlFailed);
  End();
  std::uint32_t level = 1;
  EXPECT_EQ(Traced(kIoctlFailed, [&level] { return Ioctl(0x4D07, &level); }), "Ioctl(0x4d07)\n");
}

/// A class that declares objects where plain values are due must not have these taken for addresses; without its input
/// the DSM refuses the request.
TEST_F(Channel, TakesNoNumberForAnObject) {
  for (const CIMTYPE type : {CIMTYPE{CIM_OBJECT}, CIMTYPE{CIM_OBJECT | CIM_FLAG_ARRAY}}) {
    Begin();
    ASSERT_TRUE(StartChannel());
    ASSERT_TRUE(utilDetermineBusFd());
    Classes().RemoveClass(L"VRXDSM_INPUT_ARGUMENTS");
    simhost::CimClass arguments;
    arguments.name = L"VRXDSM_INPUT_ARGUMENTS";
    for (const wchar_t* name : {L"argType", L"argID", L"argWWN"}) {
      arguments.properties.push_back(simhost::Property(name, type));
    }
    Classes().AddClass(std::move(arguments));
    InputArgumentsRecord record = {};
    const std::uint64_t address = reinterpret_cast<std::uintptr_t>(&record);
    OrbWmiVariant holder;
    holder.SetProperty(&address, sizeof address, CIM_UINT64);
    EXPECT_EQ(Ioctl(0x4DF3, &holder), kIoctlFailed);
    EXPECT_EQ(holder.GetVariant().vt, VT_EMPTY);
  }
}

/// An instance that calls itself a DSM.
class NamedProvider : public simhost::Provider {
public:
  simhost::Outcome EnumerateInstances(const simhost::ClassRef& definition,
                                      std::vector<simhost::CimObject>& instances) override {
    instances.emplace_back(definition).Set(L"DsmName", L"impostor");
    return {};
  }
};

TEST_F(Channel, ListsOnlyClassesWithTheMethodOfADsm) {
  Begin();
  ASSERT_TRUE(StartChannel());
  simhost::CimClass impostor;
  impostor.name = L"IMPOSTOR";
  impostor.properties = {simhost::Key(L"DsmName")};
  const std::wstring method = L"VrxOptionControlRequest";
  for (const std::wstring& name : {L"vrx" + method.substr(3), method + L"Ex", method + std::wstring(300, L'x')}) {
    impostor.methods.push_back({name, {}, {}});
  }
  Classes().AddClass(std::move(impostor), std::make_shared<NamedProvider>());
  EXPECT_EQ(Capture([] { ListInstalledDsms(); }).out, "DSM's installed\n===============\nzelmpxdsm (default)\n");
}

} // namespace
} // namespace korvex
