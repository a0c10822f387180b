#include "app/channel/channel.h"
#include "tests/unit/sim/channel_host.h"
#include "tests/unit/support/capture.h"

#include <functional>

namespace korvex {
namespace {

using simhost::CimValue;

class StartupTest : public ChannelHost {
protected:
  /// Starts the channel, and gives what was printed on standard error and whether it started.
  std::pair<std::string, bool> Start() {
    bool isStarted = false;
    const CapturedOutput output = Capture([&] { isStarted = StartChannel(); });
    return {output.err, isStarted};
  }
};

const char kVersionFailed[] = "Getting the MOF file version failed\n";

TEST_F(StartupTest, LearnsTheGenerationFromTheVersionInEveryForm) {
  const struct {
    const char* what;
    CimValue value;
    CIMTYPE type;
    int generation; ///< 0: start-up fails
  } cases[] = {
      {"2.0.4", L"2.0.4", CIM_STRING, 2},
      {"20.1 has its 0 in the wrong place", L"20.1", CIM_STRING, 1},
      {"a single character", L"2", CIM_STRING, 1},
      {"the empty text", L"", CIM_STRING, 1},
      {"19 characters", L"2x0x5678901234567x9", CIM_STRING, 2},
      {"20 characters", L"2x0x5678901234567x90", CIM_STRING, 0},
      {"a character without a byte", L"2.0\x20AC", CIM_STRING, 0},
      {"null", CimValue(), CIM_STRING, 0},
      {"bytes", CimValue::Bytes({'2', 0, '0'}), CIM_UINT8 | CIM_FLAG_ARRAY, 2},
      {"one byte", CimValue::Bytes({'2'}), CIM_UINT8 | CIM_FLAG_ARRAY, 1},
      {"no bytes", CimValue::Bytes({}), CIM_UINT8 | CIM_FLAG_ARRAY, 1},
      {"20 bytes", CimValue::Bytes(std::vector<std::uint8_t>(20, '2')), CIM_UINT8 | CIM_FLAG_ARRAY, 1},
      {"21 bytes", CimValue::Bytes(std::vector<std::uint8_t>(21, '2')), CIM_UINT8 | CIM_FLAG_ARRAY, 0},
      {"a number that spells it", 0x00300032U, CIM_UINT32, 2},
      {"a number that cannot be read", CimValue::Array({2U, 0U}), CIM_UINT16 | CIM_FLAG_ARRAY, 0},
  };
  for (const auto& row : cases) {
    Begin();
    AddVersion(row.type, row.value);
    const auto [printed, isStarted] = Start();
    EXPECT_EQ(isStarted, row.generation != 0) << row.what;
    EXPECT_EQ(printed, row.generation != 0 ? "" : kVersionFailed) << row.what;
    if (isStarted) {
      EXPECT_EQ(InterfaceGeneration(), row.generation) << row.what;
      EXPECT_STREQ(gWmiMethodsName, row.generation == 2 ? L"TESTDSM_WMI_METHODS_V2" : L"TESTDSM_WMI_METHODS");
    }
    EXPECT_EQ(gDsmChannel->connection.IsConnected(), 0) << row.what;
  }
}

TEST_F(StartupTest, FailsOrFallsBackAsTheFailureSays) {
  const std::string connection = "Unable to initialize WMI connection.\n";
  const std::string blanket = "Unable to set proxy blanket.\n";
  const std::string cause = "Possible Cause: Array LUNs not configured or mapped to this host.\n";
  const struct {
    const char* faults;
    bool isStarted;
    std::string printed;
  } cases[] = {
      {R"([{"operation": "CoInitializeSecurity", "give": "access denied"}])", false, ""},
      {R"([{"operation": "AllocateStore", "target": "gDsmChannel", "give": "out of memory"}])", false, ""},
      {R"([{"operation": "CoCreateInstance", "give": "class not registered"}])", false, connection + kVersionFailed},
      {R"([{"operation": "ConnectServer", "give": "access denied"}])", false, connection + kVersionFailed},
      {R"([{"operation": "CoSetProxyBlanket", "give": "access denied", "occurrence": 1}])", false,
       blanket + kVersionFailed},
      {R"([{"operation": "GetObject", "give": "not found"}])", true, ""},
      {R"([{"operation": "GetObject", "give": "failed"}])", true, ""},
      {R"([{"operation": "GetObject", "give": "access denied"}])", false,
       "Bus connection failed.error getting MOF file version,wmiReturn=9 \n" + cause + kVersionFailed},
      {R"([{"operation": "SysAllocString", "target": "VRXDSM_MOF", "give": "out of memory"}])", false,
       "Bus connection failed.error getting MOF file version,wmiReturn=4 \n" + cause + kVersionFailed},
      {R"([{"operation": "CreateInstanceEnum", "give": "failed"}])", true, ""},
      {R"([{"operation": "Clone", "give": "failed"}])", false, kVersionFailed},
      {R"([{"operation": "Next", "give": "failed"}])", false, kVersionFailed},
      {R"([{"operation": "Get", "give": "failed"}])", false, kVersionFailed},
  };
  for (const auto& row : cases) {
    Begin(row.faults);
    AddVersion(L"2.0.4");
    const auto [printed, isStarted] = Start();
    EXPECT_EQ(isStarted, row.isStarted) << row.faults;
    EXPECT_EQ(printed, row.printed) << row.faults;
    EXPECT_TRUE(!isStarted || InterfaceGeneration() == 1) << row.faults;
  }

  // Without a class there is generation 1, without an instance of it nothing can be read.
  Begin();
  EXPECT_EQ(Start(), std::pair(std::string(), true));
  EXPECT_EQ(InterfaceGeneration(), 1);
  Begin();
  simhost::CimClass version;
  version.name = L"VRXDSM_MOF";
  Classes().AddClass(std::move(version));
  EXPECT_EQ(Start(), std::pair(std::string(kVersionFailed), false));
}

TEST_F(StartupTest, TracesItsSteps) {
  const std::string names = "Requested DSM 'TESTDSM'\n"
                            "Default OEMDSM_MOF 'TESTDSM';'TESTDSM_MO'\n"
                            "Class init\n"
                            "gDsmMOFClassName name 'TESTDSM_MO'\n"
                            "localDsmMOFVersionFileName name 'VRXDSM_MOF used to gather MOF version'\n";
  Begin();
  AddVersion(L"2.0.4");
  gTraceEnabled = true;
  EXPECT_EQ(Start().first, names + "Requested DSM 'TESTDSM'\n"
                                   "Default WMI_METHODS_NAME_V2 'TESTDSM';'TESTDSM_WMI_METHODS_V2'\n"
                                   "Init succeeded\n");

  // COM that runs already is only traced.
  Begin();
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  gTraceEnabled = true;
  EXPECT_EQ(Start().first.substr(0, 20), "Library init failed\n");
  CoUninitialize();

  Begin(R"([{"operation": "CoInitializeSecurity", "give": "failed"}])");
  gTraceEnabled = true;
  EXPECT_EQ(Start(), std::pair(std::string("Security init failed\n"), false));

  Begin();
  gTraceEnabled = true;
  EXPECT_EQ(Start().first, names + "Default WMI_METHODS_NAME 'TESTDSM';'TESTDSM_WMI_METHODS'\n"
                                   "Init succeeded\n");
}

/// A generation-2 DSM that tells its version.
class DriverVersionTest : public StartupTest {
protected:
  /// Machine and channel, with a DSM whose version numbers are 1 to 4 unless `hasMethods` is false.
  void BeginWithVersion(const std::string& faults, bool hasMethods = true) {
    Begin(faults);
    AddVersion(L"2.0.4");
    simhost::CimClass version;
    version.name = L"VRXDSM_VERSION";
    for (const wchar_t* name : {L"MajorVersion", L"MinorVersion", L"ProductBuild", L"QfeNumber"}) {
      version.properties.push_back(simhost::Property(name, CIM_UINT32));
    }
    Classes().AddClass(std::move(version));
    if (hasMethods) {
      AddMethods({{L"VrxDsmGetDriverVersion", {}, {simhost::Embedded(L"DSMVersion", L"VRXDSM_VERSION")}}},
                 [this](const simhost::MethodCall&, simhost::CimObject* output) {
                   simhost::CimObject answer(Classes().RequireClass(L"VRXDSM_VERSION"));
                   answer.Set(L"MajorVersion", 1).Set(L"MinorVersion", 2).Set(L"ProductBuild", 3).Set(L"QfeNumber", 4);
                   output->Set(L"DSMVersion", CimValue::Embed(std::move(answer)));
                   return WBEM_S_NO_ERROR;
                 });
    }
    ASSERT_TRUE(StartChannel());
  }

  /// Reads the version with tracing on.
  std::pair<std::string, int> Read() {
    gTraceEnabled = true;
    int result = -1;
    const CapturedOutput output = Capture([&] { result = utilGetDsmDriverVersion(); });
    return {output.err, result};
  }

  static std::vector<std::uint32_t> Fields() {
    return {gDsmVersion->MajorVersion, gDsmVersion->MinorVersion, gDsmVersion->ProductBuild, gDsmVersion->QfeNumber};
  }
};

const std::string kOpening = "Init connection\n"
                             "Class init\n"
                             "WMI_METHODS name 'TESTDSM_WMI_METHODS_V2'\n";
const std::string kDsmTrace = "utilGetDsmDriverVersion: Requested DSM 'TESTDSM'\n";
const std::string kRequestBegins = "Ioctl(0x4df1)\n"
                                   "OutputEnumerator init - 'DSMVersion'\n"
                                   "UtilOutputParameter called 0x4df1\n"
                                   "UtilOutputParameter returned 0x0\n"
                                   "Execute method - 'VrxDsmGetDriverVersion'\n";
const std::string kRequest = kRequestBegins + "UtilReturnParameter called 0x4df1\n"
                                              "UtilReturnParameter returned 0x0\n"
                                              "ioctl return (0x1)\n";

TEST_F(DriverVersionTest, KeepsTheAnswerOrWhatOfItCouldBeRead) {
  using Numbers = std::vector<std::uint32_t>;
  const struct {
    const char* faults;
    int result;
    bool staysConnected;
    Numbers fields;
    std::string printed;
  } cases[] = {
      {"[]", 1, false, Numbers{1, 2, 3, 4}, kOpening + kDsmTrace + kRequest},
      {R"([{"operation": "Get", "target": "VRXDSM_VERSION.ProductBuild", "give": "failed"}])", 1, false,
       Numbers{1, 2, 0, 4}, kOpening + kDsmTrace + kRequest},
      {R"([{"operation": "Get", "target": "DsmContext", "give": "failed"}])", 1, false, Numbers{1, 2, 3, 4},
       kOpening + kDsmTrace + "utilGetDsmDriverVersion: Get Requested DSM 'TESTDSM' failed status 1\n" + kRequest},
      {R"([{"operation": "ExecMethod", "give": "failed"}])", 1, false, Numbers{0, 0, 0, 0},
       kOpening + kDsmTrace + kRequestBegins + "ioctl return (0xffffffff)\nError initializing versionClass enum\n"},
      {R"([{"operation": "GetObject", "target": "VRXDSM_VERSION", "give": "not found"}])", 1, false,
       Numbers{0, 0, 0, 0}, kOpening + kDsmTrace + kRequest + "Error initializing DSM_VERSION class\n"},
      {R"([{"operation": "GetObject", "target": "TESTDSM_WMI_METHODS_V2", "give": "failed"}])", 0, false,
       Numbers{0, 0, 0, 0}, kOpening + "Unable to find TESTDSM_WMI_METHODS_V2 class\n"},
      {R"([{"operation": "Clone", "target": "TESTDSM_WMI_METHODS_V2", "give": "failed"}])", 0, true,
       Numbers{0, 0, 0, 0},
       kOpening + "utilGetDsmDriverVersion: Unable to initialize OrbWmi enumerator. wmiReturn = 1\n"},
      {R"([{"operation": "ConnectServer", "occurrence": 2, "give": "failed"}])", 0, false, Numbers{0, 0, 0, 0},
       "Init connection\nUnable to initialize WMI connection.\n"},
  };
  for (const auto& row : cases) {
    BeginWithVersion(row.faults);
    EXPECT_EQ(Read(), std::pair(row.printed, row.result)) << row.faults;
    EXPECT_EQ(Fields(), row.fields) << row.faults;
    EXPECT_EQ(gDsmChannel->connection.IsConnected() != 0, row.staysConnected) << row.faults;
  }
}

TEST_F(DriverVersionTest, HasNoRecordWithoutMemory) {
  BeginWithVersion(R"([{"operation": "AllocateStore", "target": "gDsmVersion", "give": "out of memory"}])");
  EXPECT_EQ(Read(), std::pair(std::string("Unable to malloc memory for gDsmVersion - Cannot allocate memory!\n"), 0));
  EXPECT_EQ(gDsmVersion, nullptr);
}

TEST_F(DriverVersionTest, OpensTheChannelForRequests) {
  const std::string opened = kOpening + "utilDetermineBusFd: Requested DSM 'TESTDSM'\n";
  const std::string notOpened =
      "Bus connection failed.Det Bus FD\n"
      "Possible Cause: Array LUNs not configured or mapped to this host or this OEM DSM is not "
      "installed.\n";
  const struct {
    const char* faults;
    bool isOpen;
    std::string printed;
  } cases[] = {
      {"[]", true, opened},
      {R"([{"operation": "Get", "target": "DsmContext", "give": "failed"}])", true,
       opened + "utilDetermineBusFd: gRequestedDsmContext = 0. wmiReturn 1\n"},
      {R"([{"operation": "Next", "target": "TESTDSM_WMI_METHODS_V2", "give": "end"}])", true,
       opened + "utilDetermineBusFd: gRequestedDsmContext = 0. wmiReturn 5\n"},
      {R"([{"operation": "Clone", "target": "TESTDSM_WMI_METHODS_V2", "give": "failed"}])", false,
       kOpening + "utilDetermineBusFd: Unable to initialize OrbWmi enumerator. wmiReturn = 1\n"},
      {R"([{"operation": "CreateInstanceEnum", "target": "TESTDSM_WMI_METHODS_V2", "give": "access denied"}])", false,
       kOpening + "Unable to find TESTDSM_WMI_METHODS_V2 class\n" + notOpened},
      {R"([{"operation": "CoSetProxyBlanket", "occurrence": 3, "give": "failed"}])", false,
       "Init connection\nUnable to set proxy blanket.\n"},
  };
  for (const auto& row : cases) {
    BeginWithVersion(row.faults);
    gTraceEnabled = true;
    gRequestedDsmContext = 77;
    bool isOpen = false;
    EXPECT_EQ(Capture([&] { isOpen = utilDetermineBusFd(); }).err, row.printed) << row.faults;
    EXPECT_EQ(isOpen, row.isOpen) << row.faults;
    if (isOpen) {
      const bool isRead = row.printed == opened;
      EXPECT_EQ(gRequestedDsmContext, isRead ? 0x123456789ABCDEF0 : 0) << row.faults;
      EXPECT_NE(gDsmChannel->connection.IsConnected(), 0) << row.faults;
    }
  }
}

} // namespace
} // namespace korvex
