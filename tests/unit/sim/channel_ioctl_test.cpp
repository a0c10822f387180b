#include "app/channel/control_requests.h"
#include "app/channel/ioctl.h"
#include "app/channel/request_table.h"
#include "platform/com_owners.h"
#include "tests/unit/sim/channel_host.h"
#include "tests/unit/support/capture.h"

#include <cstring>

namespace korvex {
namespace {

using simhost::CimValue;
using simhost::MethodCall;

/// A DSM with a method of each kind, which keeps what it was called with and answers what the test says.
class IoctlTest : public ChannelHost {
protected:
  void Open(const std::string& faults = "[]") {
    Begin(faults);
    received = CimValue();
    calls = 0;
    answer = CimValue();
    AddVersion(L"2.0.4");
    AddPlainClass(L"VRXDSM_INPUT_ARGUMENTS",
                  {simhost::Property(L"argType", CIM_UINT8), simhost::Property(L"argID", CIM_UINT8),
                   simhost::Property(L"argWWN", CIM_STRING)});
    AddPlainClass(L"VRXDSM_SCAN_OPTION", {simhost::Property(L"ScanOption", CIM_STRING)});
    AddPlainClass(L"ANSWER", {simhost::Property(L"Value", CIM_UINT32)});
    AddMethods({{L"VrxDsmGetCurrentNumberOfArrays", {}, {simhost::Property(L"NumberOfArrays", CIM_UINT32)}},
                {L"VrxDsmGetCurrentNumberOfLuns", {}, {simhost::Property(L"NumberOfLuns", CIM_STRING)}},
                {L"VrxDsmGetCurrentNumberOfPaths", {}, {simhost::Property(L"Other", CIM_UINT32)}},
                {L"VrxDsmGetArrayInfo",
                 {simhost::Embedded(L"inputArguments", L"VRXDSM_INPUT_ARGUMENTS")},
                 {simhost::Embedded(L"DSMArrayInfo", L"ANSWER")}},
                {L"VrxDsmGetTPGInfo",
                 {simhost::Embedded(L"inputArguments", L"VRXDSM_INPUT_ARGUMENTS")},
                 {simhost::Property(L"TPGInfo", CIM_UINT32)}},
                {L"VrxGetModuleInfo",
                 {simhost::Property(L"ModuleId", CIM_UINT32)},
                 {simhost::Embedded(L"ModuleInfo", L"ANSWER")}},
                {L"VrxSetDebugLevel", {simhost::Property(L"DebugLevel", CIM_SINT64)}, {}},
                {L"VrxSetErrorLevel", {simhost::Property(L"ErrorLevel", CIM_SINT32)}, {}},
                {L"VrxPerformScan", {simhost::Embedded(L"ScanType", L"VRXDSM_SCAN_OPTION")}, {}}},
               [this](const MethodCall& call, simhost::CimObject* output) {
                 ++calls;
                 received = call.method.inputs.empty() ? CimValue() : call.Input(call.method.inputs[0].name);
                 if (output != nullptr) {
                   output->Set(call.method.outputs[0].name, answer);
                 }
                 return WBEM_S_NO_ERROR;
               });
    ASSERT_TRUE(StartChannel());
    ASSERT_TRUE(utilDetermineBusFd());
  }

  void AddPlainClass(const wchar_t* name, std::vector<simhost::PropertyDefinition> properties) {
    simhost::CimClass definition;
    definition.name = name;
    definition.properties = std::move(properties);
    Classes().AddClass(std::move(definition));
  }

  /// An embedded object with this number.
  CimValue Answer(std::uint32_t number) {
    simhost::CimObject object(Classes().RequireClass(L"ANSWER"));
    object.Set(L"Value", number);
    return CimValue::Embed(std::move(object));
  }

  CimValue received; ///< the input parameter of the call made last
  int calls = 0;
  CimValue answer; ///< the output parameter of the calls
};

/// The number of the ANSWER object that the holder holds; none when it holds no object.
std::uint32_t HeldNumber(OrbWmiVariant& holder) {
  if (holder.GetVariant().vt != VT_UNKNOWN || holder.GetVariant().punkVal == nullptr) {
    return 0;
  }
  platform::ComPtr<IWbemClassObject> object;
  holder.GetVariant().punkVal->QueryInterface(IID_IWbemClassObject, object.putVoid());
  platform::Variant value;
  object->Get(L"Value", 0, value.put(), nullptr, nullptr);
  return static_cast<std::uint32_t>(value.get().lVal);
}

bool IsEmpty(OrbWmiVariant& holder) {
  return holder.GetVariant().vt == VT_EMPTY;
}

/// Puts the address of a selection record into the holder, as the callers do.
void PutAddress(OrbWmiVariant& holder, const InputArgumentsRecord* record) {
  const std::uint64_t address = reinterpret_cast<std::uintptr_t>(record);
  holder.SetProperty(&address, sizeof address, CIM_UINT64);
}

TEST_F(IoctlTest, SendsLevelsInTheirWidths) {
  Open();
  std::uint32_t level = 0xFFFFFFFF;
  EXPECT_EQ(Ioctl(0x4D07, &level), kIoctlSucceeded);
  EXPECT_EQ(received.Number(), 0xFFFFFFFFU) << "the upper half is zero";
  EXPECT_EQ(Ioctl(0x4D08, &level), kIoctlSucceeded);
  EXPECT_EQ(static_cast<std::int64_t>(received.Number()), -1);
  EXPECT_EQ(calls, 2);
}

TEST_F(IoctlTest, AlwaysAsksForTheForceRebalanceScan) {
  Open();
  EXPECT_EQ(Ioctl(0x4D0D, nullptr), kIoctlSucceeded);
  ASSERT_NE(received.IfObject(), nullptr);
  EXPECT_EQ(received.IfObject()->Value(L"ScanOption").TextOrEmpty(), L"forcerebalance");
}

TEST_F(IoctlTest, CarriesTheSelectionAndHandsTheObjectBack) {
  Open();
  answer = Answer(42);
  InputArgumentsRecord record = {2, 7, {}};
  std::memcpy(record.argWWN, "600a0b800012345600000000deadbeef", 32);
  {
    OrbWmiVariant holder;
    PutAddress(holder, &record);
    EXPECT_EQ(Ioctl(0x4DF3, &holder), kIoctlSucceeded);
    EXPECT_EQ(HeldNumber(holder), 42U);
  }
  ASSERT_NE(received.IfObject(), nullptr);
  EXPECT_EQ(received.IfObject()->Value(L"argType").Number(), 2U);
  EXPECT_EQ(received.IfObject()->Value(L"argID").Number(), 7U);
  EXPECT_EQ(received.IfObject()->Value(L"argWWN").TextOrEmpty(), L"600a0b800012345600000000deadbeef");
}

TEST_F(IoctlTest, SendsAModuleIdAndTracesTheSteps) {
  Open();
  answer = Answer(9);
  const std::string before = "Ioctl(0x4f02)\n"
                             "InputEnumerator init - 'ModuleId'\n"
                             "OutputEnumerator init - 'ModuleInfo'\n"
                             "UtilOutputParameter called 0x4f02\n"
                             "UtilOutputParameter returned 0x0\n"
                             "Execute method - 'VrxGetModuleInfo'\n"
                             "UtilReturnParameter called 0x4f02\n";
  const std::uint32_t moduleId = 3;
  OrbWmiVariant holder;
  holder.SetProperty(&moduleId, sizeof moduleId, CIM_UINT32);
  gTraceEnabled = true;
  EXPECT_EQ(Capture([&] { EXPECT_EQ(Ioctl(0x4F02, &holder), kIoctlSucceeded); }).err,
            before + "UtilReturnParameter returned 0x0\nioctl return (0x1)\n");
  EXPECT_EQ(received.Number(), 3U);
  EXPECT_EQ(HeldNumber(holder), 9U);

  // A null answer fails the request; the holder, an object by now, holds no module id, so nothing is sent as input.
  answer = CimValue();
  EXPECT_EQ(Capture([&] { EXPECT_EQ(Ioctl(0x4F02, &holder), kIoctlFailed); }).err,
            before + "UtilReturnParameter returned 0x7\nioctl return (0xffffffff)\n");
  EXPECT_TRUE(received.IsNull());
  EXPECT_TRUE(IsEmpty(holder));

  EXPECT_EQ(Capture([&] { EXPECT_EQ(Ioctl(0x4F02, nullptr), kIoctlSucceeded); }).err,
            before + "UtilReturnParameter returned 0x3\nioctl return (0x1)\n");
}

TEST_F(IoctlTest, CopiesNumbersOnlyWhenTheyAreNumbers) {
  Open();
  std::uint32_t number = 77;
  EXPECT_EQ(Ioctl(0x4DF4, &number), kIoctlFailed) << "null";
  EXPECT_EQ(number, 77U);
  answer = 0U;
  EXPECT_EQ(Ioctl(0x4DF4, &number), kIoctlSucceeded);
  EXPECT_EQ(number, 0U);
  answer = 0xFFFFFFFFU;
  EXPECT_EQ(Ioctl(0x4DF4, &number), kIoctlSucceeded);
  EXPECT_EQ(number, 0xFFFFFFFFU);

  number = 77;
  answer = L"5";
  EXPECT_EQ(Ioctl(0x4DF8, &number), kIoctlFailed) << "a text";
  answer = 5U;
  EXPECT_EQ(Ioctl(0x4DFA, &number), kIoctlFailed) << "an output of another name";
  EXPECT_EQ(Ioctl(0x4DF9, &number), kIoctlFailed) << "a method that the DSM does not have";
  EXPECT_EQ(Ioctl(0x4DF4, nullptr), kIoctlFailed);
  EXPECT_EQ(number, 77U);
}

TEST_F(IoctlTest, RunsTheMethodWithoutAnInputThatCannotBeBuilt) {
  InputArgumentsRecord record = {1, 2, {}};
  for (const char* faults :
       {R"([{"operation": "GetObject", "target": "VRXDSM_INPUT_ARGUMENTS", "give": "not found"}])",
        R"([{"operation": "SpawnInstance", "target": "VRXDSM_INPUT_ARGUMENTS", "give": "failed"}])",
        R"([{"operation": "Put", "target": "VRXDSM_INPUT_ARGUMENTS.argWWN", "give": "failed"}])",
        R"([{"operation": "Get", "target": "VRXDSM_INPUT_ARGUMENTS.argID", "give": "failed"}])"}) {
    Open(faults);
    answer = Answer(1);
    OrbWmiVariant holder;
    PutAddress(holder, &record);
    EXPECT_EQ(Ioctl(0x4DF3, &holder), kIoctlSucceeded) << faults;
    EXPECT_TRUE(received.IsNull()) << faults;
    EXPECT_EQ(calls, 1);
  }

  Open();
  answer = Answer(1);
  OrbWmiVariant holder;
  EXPECT_EQ(Ioctl(0x4DF3, &holder), kIoctlSucceeded) << "no address";
  EXPECT_TRUE(received.IsNull());
  PutAddress(holder, nullptr);
  EXPECT_EQ(Ioctl(0x4DF3, &holder), kIoctlSucceeded) << "address 0";
  EXPECT_TRUE(received.IsNull());

  // A class that declares objects where plain values are due must not have these taken for addresses.
  for (const CIMTYPE type : {CIMTYPE{CIM_OBJECT}, CIMTYPE{CIM_OBJECT | CIM_FLAG_ARRAY}}) {
    Classes().RemoveClass(L"VRXDSM_INPUT_ARGUMENTS");
    AddPlainClass(L"VRXDSM_INPUT_ARGUMENTS", {simhost::Property(L"argType", type)});
    PutAddress(holder, &record);
    EXPECT_EQ(Ioctl(0x4DF3, &holder), kIoctlSucceeded);
    EXPECT_TRUE(received.IsNull());
  }
}

TEST_F(IoctlTest, LeavesNoObjectBehindWhenTheMethodFails) {
  InputArgumentsRecord record = {0, 0, {}};
  const struct {
    const char* what;
    const char* faults;
    std::uint32_t code;
    CimValue answer;
    const char* printed;
  } cases[] = {
      {"refused", R"([{"operation": "ExecMethod", "give": "access denied"}])", 0x4DF3, 1U, "Permission Denied.\n"},
      {"failed", R"([{"operation": "ExecMethod", "give": "failed"}])", 0x4DF3, 1U, ""},
      {"nothing came back", R"([{"operation": "ExecMethod", "give": "nothing"}])", 0x4DF3, 1U, ""},
      {"a number instead", "[]", 0x4DF5, 1U, ""},
      {"an object that cannot be copied", R"([{"operation": "VariantCopy", "give": "failed"}])", 0x4DF3, CimValue(),
       ""},
      {"no such method", "[]", 0x4DF6, 1U, ""},
  };
  for (const auto& row : cases) {
    Open(row.faults);
    answer = row.answer.IsNull() || row.code == 0x4DF3 ? Answer(1) : row.answer;
    OrbWmiVariant holder;
    PutAddress(holder, &record);
    EXPECT_EQ(Capture([&] { EXPECT_EQ(Ioctl(row.code, &holder), kIoctlFailed) << row.what; }).err, row.printed)
        << row.what;
    EXPECT_TRUE(IsEmpty(holder)) << row.what;
  }

  Open(R"([{"operation": "ExecMethod", "give": "access denied"}])");
  std::uint32_t number = 5;
  EXPECT_EQ(Capture([&] { EXPECT_EQ(Ioctl(0x4DF4, &number), kIoctlFailed); }).err, "Permission Denied.\n");
  EXPECT_EQ(number, 5U);
}

TEST_F(IoctlTest, TouchesNothingForCodesThatCannotBeSent) {
  Open();
  gTraceEnabled = true;
  EXPECT_EQ(Capture([] { EXPECT_EQ(Ioctl(0x4D04, nullptr), kIoctlFailed); }).err, "Ioctl(0x4d04)\n");
  EXPECT_EQ(Capture([] { EXPECT_EQ(Ioctl(0x4D0C, nullptr), kIoctlFailed); }).err,
            "Ioctl(0x4d0c)\nCalling callback function\nioctl return (0xffffffff)\n");
  EXPECT_EQ(calls, 0);

  End();
  gTraceEnabled = true;
  std::uint32_t level = 1;
  EXPECT_EQ(Capture([&] { EXPECT_EQ(Ioctl(0x4D07, &level), kIoctlFailed); }).err, "Ioctl(0x4d07)\n");
}

/// What a callback of the tests is to answer, and what it was given.
struct {
  std::uint32_t status;
  void* argument;
  bool hadEmptyOutput;
  int nested;
} gCallback;

wmiReturn BuildNothing(void*, OrbWmiVariant&) {
  return kNothingToDo;
}

std::uint32_t NestedRequest(std::uint32_t requestCode, void* argument, OrbWmiVariant& output) {
  EXPECT_EQ(requestCode, 0x4DF2U);
  gCallback.argument = argument;
  gCallback.hadEmptyOutput = IsEmpty(output);
  OrbWmiVariant holder;
  PutAddress(holder, static_cast<InputArgumentsRecord*>(argument));
  gCallback.nested = Ioctl(0x4DF3, &holder);
  EXPECT_EQ(HeldNumber(holder), 6U);
  return gCallback.status;
}

TEST_F(IoctlTest, LetsCallbacksSendRequestsAndDecide) {
  static constexpr RequestCallbacks kCallbacks = {NestedRequest, NestedRequest, NestedRequest, BuildNothing};
  ConnectRequestTable(kCallbacks);
  const struct {
    std::uint32_t status;
    int result;
  } cases[] = {{0, 1}, {3, 1}, {1, -1}, {2, -1}, {9, -1}};
  for (const auto& row : cases) {
    Open();
    answer = Answer(6);
    InputArgumentsRecord record = {0, 0, {}};
    gCallback = {row.status, nullptr, false, 0};
    EXPECT_EQ(Ioctl(0x4DF2, &record), row.result) << row.status;
    EXPECT_EQ(gCallback.argument, &record);
    EXPECT_TRUE(gCallback.hadEmptyOutput);
    EXPECT_EQ(gCallback.nested, kIoctlSucceeded);
    EXPECT_EQ(calls, 1);
  }
}

TEST_F(IoctlTest, EnumeratesTheDeviceTreeWithoutTheDsm) {
  const struct {
    const char* faults;
    int result;
    std::uint64_t waited; ///< milliseconds
    const char* printed;
  } cases[] = {
      {"[]", 1, 5000, "\nPerforming bus scan...\n"},
      {R"([{"operation": "CM_Locate_DevNode_ExW", "give": "failed"}])", 0, 0,
       "\nPerforming bus scan...\nUnable to send ioctl request - Success!\n"},
      {R"([{"operation": "CM_Reenumerate_DevNode_Ex", "give": "failed"}])", 0, 0,
       "\nPerforming bus scan...\nUnable to send ioctl request - Success!\n"},
  };
  for (const auto& row : cases) {
    Open(row.faults);
    const std::uint64_t before = HostClock().Now();
    errno = 0;
    EXPECT_EQ(Capture([&] { EXPECT_EQ(PerformScan("busscan"), row.result) << row.faults; }).err, row.printed);
    EXPECT_EQ((HostClock().Now() - before) / 10000, row.waited) << row.faults;
    EXPECT_EQ(calls, 0);
  }
}

} // namespace
} // namespace korvex
