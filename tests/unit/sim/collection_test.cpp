#include "app/inventory/current_array.h"
#include "app/inventory/gen2_stores.h"
#include "tests/unit/sim/collection_host.h"
#include "tests/unit/support/capture.h"

#include <string>

namespace korvex {
namespace {

class Collection : public CollectionHost {
protected:
  /// What a silent collection of the whole array traces.
  static std::string TraceOfCollect(int expectedResult) {
    gTraceEnabled = true;
    return Capture([expectedResult] { EXPECT_EQ(Collect(), expectedResult); }).err;
  }
};

const std::string kOpened = "Init connection\nClass init\nWMI_METHODS name 'TESTDSM_WMI_METHODS_V2'\n";

/// The trace of a request without input that succeeds.
std::string NumberRequest(const std::string& code, const std::string& method, const std::string& output) {
  return "Ioctl(" + code + ")\nOutputEnumerator init - '" + output + "'\nUtilOutputParameter called " + code +
         "\nUtilOutputParameter returned 0x0\nExecute method - '" + method + "'\nUtilReturnParameter called " + code +
         "\nUtilReturnParameter returned 0x0\nioctl return (0x1)\n";
}

/// The trace of a request for the selection that succeeds.
std::string SelectionRequest(const std::string& code, const std::string& method, const std::string& output) {
  std::string trace = NumberRequest(code, method, output);
  return trace.insert(trace.find('\n') + 1, "InputEnumerator init - 'inputArguments'\n");
}

TEST_F(Collection, SendsOneRequestOfEachKind) {
  const std::string begun = "Ioctl(0x4df2)\nCalling callback function\n" + kOpened + "Requested DSM 'TESTDSM'\n" +
                            SelectionRequest("0x4df3", "VrxDsmGetArrayInfo", "DSMArrayInfo");
  const std::string luns = SelectionRequest("0x4df6", "VrxDsmGetMPGInfo", "MPGInfo");
  const std::string ended = "ioctl return (0x1)\n";
  Open();
  const std::string opened = kOpened + "utilDetermineBusFd: Requested DSM 'TESTDSM'\n";
  EXPECT_EQ(TraceOfCollect(1), opened + opened + "sending ioctl for maxArrayModules \n" +
                                   NumberRequest("0x4df4", "VrxDsmGetCurrentNumberOfArrays", "NumberOfArrays") +
                                   "MaxArrayModules = 1 \n" + begun +
                                   SelectionRequest("0x4df5", "VrxDsmGetTPGInfo", "TPGInfo") + luns +
                                   SelectionRequest("0x4df7", "VrxDsmGetDeviceInfo", "DEVInfo") + ended);
  gStatusScanActive = true;
  EXPECT_EQ(TraceOfCollect(1), begun + SelectionRequest("0x4dfb", "VrxDsmGetTPGInfoWithStatus", "TPGInfo") + luns +
                                   SelectionRequest("0x4dfc", "VrxDsmGetDeviceInfoWithStatus", "DEVInfo") + ended);
  gDetailMode = false;
  EXPECT_EQ(Capture([] { EXPECT_EQ(GetDsmArrayInfo(), 1); }).err, begun + ended);
}

struct FailureRow {
  const char* fault;
  const char* trace;
  std::uint32_t controllers; ///< stored in spite of the failure
  std::uint32_t luns;
  std::uint32_t devices;
};

TEST_F(Collection, AListThatCannotBeReadIsEmpty) {
  // An embedded object is asked for IWbemClassObject in this order: the array list, its element, the controller list,
  // its two elements, the LUN list, its element, the device list.
  const FailureRow rows[] = {
      {R"({"operation": "GetObject", "target": "VRXDSM_ARRAY_INFO_LIST", "give": "failed"})",
       "Error initializing VRXDSM_ARRAY_INFO_LIST class\n", 0, 0, 1},
      {R"({"operation": "GetObject", "target": "VRXDSM_ARRAY_INFO", "give": "not found"})",
       "Error initializing VRXDSM_ARRAY_INFO class\n", 0, 0, 1},
      {R"({"operation": "QueryInterface", "target": "IWbemClassObject", "occurrence": 1, "give": "no interface"})",
       "Error initializing arrayInfoListClass enum\n", 0, 0, 1},
      {R"({"operation": "Get", "target": "VRXDSM_ARRAY_INFO_LIST.List", "give": "failed"})", "", 0, 0, 1},
      {R"({"operation": "CreateInstanceEnum", "target": "VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST", "give": "failed"})",
       "Error initializing VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST class\n", 0, 1, 1},
      {R"({"operation": "GetObject", "target": "VRXDSM_TARGET_PORT_GROUP_CONTROLLER", "give": "access denied"})",
       "Error initializing VRXDSM_TARGET_PORT_GROUP_CONTROLLER class\n", 0, 1, 1},
      {R"({"operation": "QueryInterface", "target": "IWbemClassObject", "occurrence": 3, "give": "no interface"})",
       "Error initializing tpgInfoListClass enum\n", 0, 1, 1},
      {R"({"operation": "Get", "target": "VRXDSM_TARGET_PORT_GROUP_CONTROLLER_LIST.List", "give": "failed"})",
       "Error initializing initializeArrayEnumerator\n", 0, 1, 1},
      {R"({"operation": "GetObject", "target": "VRXDSM_MULTIPATH_DEVICE_LIST", "give": "failed"})",
       "Error initializing VRXDSM_MULTIPATH_DEVICE_LIST class\n", 2, 0, 1},
      {R"({"operation": "GetObject", "target": "VRXDSM_MULTIPATH_DEVICE", "give": "failed"})",
       "Error initializing VRXDSM_MULTIPATH_DEVICE class\n", 2, 0, 1},
      {R"({"operation": "QueryInterface", "target": "IWbemClassObject", "occurrence": 6, "give": "no interface"})",
       "Error initializing mpgInfoListClass enum\n", 2, 0, 1},
      {R"({"operation": "Get", "target": "VRXDSM_MULTIPATH_DEVICE_LIST.List", "give": "failed"})", "", 2, 0, 1},
      {R"({"operation": "GetObject", "target": "VRXDSM_DEVICE_INFO_LIST", "give": "failed"})",
       "Error initializing VRXDSM_DEVICE_INFO_LIST class\n", 2, 1, 0},
      {R"({"operation": "GetObject", "target": "VRXDSM_DEVICE_INFO", "give": "failed"})",
       "Error initializing VRXDSM_DEVICE_INFO class\n", 2, 1, 0},
      {R"({"operation": "QueryInterface", "target": "IWbemClassObject", "occurrence": 8, "give": "no interface"})",
       "Error initializing devInfoListClass enum\n", 2, 1, 0},
      {R"({"operation": "Get", "target": "VRXDSM_DEVICE_INFO_LIST.List", "give": "failed"})",
       "Error initializing initializeArrayEnumerator\n", 2, 1, 0},
  };
  for (const FailureRow& row : rows) {
    Open("[" + std::string(row.fault) + "]");
    lists[L"VrxDsmGetTPGInfo"] = {Record(7328, 7328), Record(7328, 7328)};
    lists[L"VrxDsmGetMPGInfo"] = {Record(2126, 2126)};
    lists[L"VrxDsmGetDeviceInfo"] = {Record(60, 60)};
    const std::string trace = TraceOfCollect(1);
    EXPECT_NE(trace.find(row.trace), std::string::npos) << row.fault << "\n" << trace;
    EXPECT_EQ(trace.find("Error initializing") != std::string::npos, *row.trace != '\0') << row.fault << "\n" << trace;
    EXPECT_EQ(gArrayControllerCount, row.controllers) << row.fault;
    EXPECT_EQ(gArrayLunCount, row.luns) << row.fault;
    EXPECT_EQ(gDevInfoCount, row.devices) << row.fault;
  }
}

TEST_F(Collection, AFailedRequestEndsIt) {
  for (const wchar_t* method :
       {L"VrxDsmGetArrayInfo", L"VrxDsmGetTPGInfo", L"VrxDsmGetMPGInfo", L"VrxDsmGetDeviceInfo"}) {
    const std::wstring wide(method);
    Open(R"([{"operation": "ExecMethod", "target": ")" + std::string(wide.begin(), wide.end()) +
         R"(", "give": "failed"}])");
    const std::string trace = TraceOfCollect(-1);
    const std::string expectedEnd = "!\nioctl return (0xffffffff)\n";
    EXPECT_NE(trace.find("ioctl return (0xffffffff)\nUnable to send ioctl request - "), std::string::npos) << trace;
    EXPECT_EQ(trace.substr(trace.size() - expectedEnd.size()), expectedEnd);
    EXPECT_EQ(calls[L"VrxDsmGetDeviceInfo"], 0);
  }
}

TEST_F(Collection, AllocationFailuresThatAreOnlyTraced) {
  Open(R"([{"operation": "AllocateStore", "target": "gModuleName", "give": "out of memory"}])");
  EXPECT_NE(TraceOfCollect(0).find("gModuleName array - Cannot allocate memory!\n"
                                   "failure in initialization of Module Array.\n"),
            std::string::npos);
  Open(R"([{"operation": "AllocateStore", "target": "gInterfaceTypes", "give": "out of memory"}])");
  EXPECT_NE(TraceOfCollect(0).find("Could not allocate memory for interface type array.\n"), std::string::npos);
}

} // namespace
} // namespace korvex
