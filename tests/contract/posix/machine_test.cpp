#include "platform/allocation.h"
#include "platform/com_owners.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/posix/machine.h"
#include "tests/contract/support/counted_object.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/test_machine.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

// How the POSIX side uses its machine: faults in place of calls, and what passes through.

namespace {

using contract::TestMachine;
using platform::MachineCode;
using platform::ReplaceMachine;

constexpr std::uint32_t kFaultCode = 0x80041234;

/// Puts a test machine in place for the length of a test.
class Machine : public testing::Test {
  std::unique_ptr<platform::Machine> m_before;

protected:
  Machine() : m_before(ReplaceMachine(contract::MakeTestMachine())) {}
  ~Machine() override { ReplaceMachine(std::move(m_before)); }

  TestMachine& machine = static_cast<TestMachine&>(platform::TheMachine());
};

/// How a call tells of a fault: with the code as its result, as the last error or errno beside a failed BOOL, count or
/// pointer, or with the failed result alone.
enum class Tells { kResult, kLastError, kErrno, kNothing, kNoMemory };
using enum Tells;

struct FaultRow {
  const char* operation;
  const char* target;
  Tells tells;
  std::uint64_t (*call)();
};

std::uint64_t Number(HRESULT result) {
  return static_cast<std::uint32_t>(result);
}
std::uint64_t Number(const void* pointer) {
  return pointer == nullptr ? 0 : 1;
}

/// What the calls of the table work on.
LONG gLong = 0;
DWORD gSize = 64;
DEVINST gNode = 0;
HKEY gKey = nullptr;
void* gPointer = nullptr;
wchar_t gName[64];
FILETIME gFileTime;
SYSTEMTIME gDate;
VARIANT gVariant;
SAFEARRAYBOUND gBound = {1, 0};
SAFEARRAY gArray;
contract::CountedObject gObject;
const wchar_t kText[] = {L'c', L'a', L'f', 0xE9, L' ', 0xD83D, 0xDE00, L' ', 0xDE00, 0};

const FaultRow kFaultRows[] = {
    {"CoInitializeEx", "", kResult, [] { return Number(CoInitializeEx(nullptr, 0)); }},
    {"CoInitializeSecurity", "", kResult,
     [] { return Number(CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 0, nullptr, 0, nullptr)); }},
    {"CoCreateInstance", "", kResult,
     [] { return Number(CoCreateInstance(IID_IUnknown, nullptr, 1, IID_IUnknown, &gPointer)); }},
    {"CoSetProxyBlanket", "", kResult,
     [] { return Number(CoSetProxyBlanket(&gObject, 0, 0, nullptr, 0, 0, nullptr, 0)); }},
    {"SysAllocString", "caf\xC3\xA9 \xF0\x9F\x98\x80 \xEF\xBF\xBD", kNothing,
     [] { return Number(platform::Bstr(kText).get()); }},
    {"SafeArrayCreate", "", kNothing, [] { return Number(SafeArrayCreate(VT_I4, 1, &gBound)); }},
    {"SafeArrayGetLBound", "", kResult, [] { return Number(SafeArrayGetLBound(&gArray, 1, &gLong)); }},
    {"SafeArrayGetUBound", "", kResult, [] { return Number(SafeArrayGetUBound(&gArray, 1, &gLong)); }},
    {"SafeArrayAccessData", "", kResult, [] { return Number(SafeArrayAccessData(&gArray, &gPointer)); }},
    {"VariantCopy", "", kResult, [] { return Number(VariantCopy(&gVariant, &gVariant)); }},
    {"AllocateStore", "a store", kNoMemory, [] { return Number(platform::AllocateStore("a store", 8)); }},
    {"GetComputerNameExW", "ComputerNameDnsHostname", kLastError,
     [] { return Number(GetComputerNameExW(ComputerNameDnsHostname, gName, &gSize)); }},
    {"GetComputerNameExW", "ComputerNameDnsDomain", kLastError,
     [] { return Number(GetComputerNameExW(ComputerNameDnsDomain, gName, &gSize)); }},
    {"GetTimeFormatW", "HH", kLastError, [] { return Number(GetTimeFormatW(0, 0, nullptr, L"HH", nullptr, 0)); }},
    {"GetDateFormatW", "yy", kLastError, [] { return Number(GetDateFormatW(0, 0, nullptr, L"yy", nullptr, 0)); }},
    {"FileTimeToSystemTime", "", kLastError, [] { return Number(FileTimeToSystemTime(&gFileTime, &gDate)); }},
    {"CM_Locate_DevNode_ExW", "", kResult,
     [] { return std::uint64_t{CM_Locate_DevNode_ExW(&gNode, nullptr, 0, nullptr)}; }},
    {"CM_Reenumerate_DevNode_Ex", "", kResult, [] { return std::uint64_t{CM_Reenumerate_DevNode_Ex(1, 0, nullptr)}; }},
    {"RegOpenKeyExW", "SYSTEM\\x", kResult,
     [] { return Number(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SYSTEM\\x", 0, KEY_ALL_ACCESS, &gKey)); }},
    {"RegCloseKey", "", kResult, [] { return Number(RegCloseKey(HKEY_LOCAL_MACHINE)); }},
    {"RegSetValueExW", "v", kResult,
     [] { return Number(RegSetValueExW(HKEY_LOCAL_MACHINE, L"v", 0, REG_NONE, nullptr, 0)); }},
    {"RegDeleteKeyW", "x", kResult, [] { return Number(RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"x")); }},
    {"fopen", "no\\such", kErrno, [] { return Number(platform::OpenTextFile("no\\such", "r")); }},
};

TEST_F(Machine, FaultsComeInPlaceOfTheCallWithItsNameAndTarget) {
  const std::map<Tells, int> errorNumbers = {{kErrno, static_cast<int>(kFaultCode)}, {kNoMemory, ENOMEM}};
  for (const FaultRow& row : kFaultRows) {
    SCOPED_TRACE(testing::Message() << row.operation << ' ' << row.target);
    int asked = 0;
    machine.onFault = [&](std::string_view operation, std::string_view target) -> std::optional<std::uint32_t> {
      errno = EIO; // of the machine's own, which must not come through
      if (operation != row.operation) {
        return std::nullopt;
      }
      EXPECT_EQ(row.target, target);
      ++asked;
      return kFaultCode;
    };
    contract::SetMarkers();
    const std::uint64_t result = row.call();
    const int errorNumber = errno;
    EXPECT_EQ(row.tells == kResult ? kFaultCode : 0, result);
    EXPECT_EQ(row.tells == kLastError ? kFaultCode : contract::kUntouchedError, GetLastError());
    EXPECT_EQ(errorNumbers.contains(row.tells) ? errorNumbers.at(row.tells) : contract::kUntouchedErrno, errorNumber);
    EXPECT_EQ(1, asked);
  }
}

TEST_F(Machine, MayUseThePlatformWhileItMakesAnObject) {
  machine.onFault = [](std::string_view operation, std::string_view) {
    return operation == "SysAllocString" ? std::optional<std::uint32_t>(kFaultCode) : std::nullopt;
  };
  machine.onCreate = [](REFCLSID, REFIID riid, void** object) {
    { const MachineCode deeper; }
    EXPECT_TRUE(platform::Bstr(L"text")); // faults spare the machine's own code
    errno = EIO;
    return gObject.QueryInterface(riid, object);
  };
  ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
  contract::SetMarkers();
  platform::ComPtr<IUnknown> object;
  EXPECT_EQ(S_OK, CoCreateInstance(IID_IUnknown, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.putVoid()));
  EXPECT_EQ(contract::kUntouchedError, contract::LastErrorOnly());
  EXPECT_EQ(&gObject, object.get());
  EXPECT_FALSE(platform::Bstr(L"text"));
  object.reset();
  EXPECT_EQ(0U, gObject.references());
  CoUninitialize();
}

TEST_F(Machine, IsMadeOnceForAllThreads) {
  auto before = ReplaceMachine(nullptr);
  std::vector<platform::Machine*> seen(4);
  {
    std::vector<std::jthread> threads;
    threads.reserve(seen.size());
    for (platform::Machine*& slot : seen) {
      threads.emplace_back([&slot] { slot = &platform::TheMachine(); });
    }
  }
  EXPECT_EQ(std::vector<platform::Machine*>(seen.size(), seen.front()), seen);
  ReplaceMachine(std::move(before));
}

TEST(LiveObjects, AreCountedByNameAndKind) {
  using Counts = std::map<std::string, std::uint64_t>;
  const auto liveStores = [] {
    Counts counts;
    platform::VisitLiveStores(
        [](const char* name, std::uint64_t count, void* context) { (*static_cast<Counts*>(context))[name] = count; },
        &counts);
    return counts;
  };
  EXPECT_EQ(Counts(), liveStores());
  void* const stores[] = {platform::AllocateStore("b", 1), platform::AllocateStore("a", 1),
                          platform::AllocateStore(std::string("b").c_str(), 1)}; // by its text, wherever that stands
  EXPECT_EQ((Counts{{"a", 1}, {"b", 2}}), liveStores());
  for (void* store : stores) {
    platform::FreeStore(store);
  }
  EXPECT_EQ(Counts(), liveStores());

  const auto liveValues = [] {
    const platform::LiveObjects live = platform::CountLiveObjects();
    return std::pair(live.bstrs, live.safeArrays);
  };
  const auto [bstrs, arrays] = liveValues();
  SAFEARRAY* array = SafeArrayCreate(VT_BSTR, 1, &gBound);
  {
    const platform::Bstr text(L"text");
    LONG index = 0;
    EXPECT_EQ(S_OK, SafeArrayPutElement(array, &index, text.get()));
    EXPECT_EQ(std::pair(bstrs + 2, arrays + 1), liveValues());
  }
  EXPECT_EQ(S_OK, SafeArrayDestroy(array));
  EXPECT_EQ(std::pair(bstrs, arrays), liveValues());
}

TEST_F(Machine, HasOnlyTheLocalRootOfTheDeviceTree) {
  wchar_t device[] = L"ROOT\\SYSTEM\\0000";
  int anotherMachine = 0;
  DEVINST node = 0;
  EXPECT_EQ(CR_NO_SUCH_DEVNODE, CM_Locate_DevNode_ExW(&node, device, 0, nullptr));
  EXPECT_EQ(CR_MACHINE_UNAVAILABLE, CM_Locate_DevNode_ExW(&node, nullptr, 0, &anotherMachine));
  EXPECT_EQ(CR_SUCCESS, CM_Locate_DevNode_ExW(&node, nullptr, 0, nullptr));
  EXPECT_EQ(TestMachine::kRootNode, node);
  EXPECT_EQ(CR_SUCCESS, CM_Reenumerate_DevNode_Ex(node, 0, nullptr));
  EXPECT_EQ(CR_NO_SUCH_DEVNODE, CM_Reenumerate_DevNode_Ex(node + 1, 0, nullptr));
  EXPECT_EQ(CR_MACHINE_UNAVAILABLE, CM_Reenumerate_DevNode_Ex(node, 0, &anotherMachine));
}

TEST(AllocationCap, HoldsForTextsAndArraysToo) {
  SAFEARRAYBOUND bound = {0xFFFFFFFF, 0};
  EXPECT_EQ(nullptr, SafeArrayCreate(VT_R8, 1, &bound));
  EXPECT_EQ(nullptr, SafeArrayCreate(VT_UI1, 1, &bound));
  EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0xFFFFFFFF));
}

} // namespace
