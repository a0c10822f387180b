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
class PlacedMachine {
public:
  PlacedMachine() {
    auto machine = std::make_unique<TestMachine>();
    m_machine = machine.get();
    m_before = ReplaceMachine(std::move(machine));
  }
  PlacedMachine(const PlacedMachine&) = delete;
  PlacedMachine& operator=(const PlacedMachine&) = delete;
  ~PlacedMachine() { ReplaceMachine(std::move(m_before)); }
  TestMachine* operator->() const { return m_machine; }

private:
  TestMachine* m_machine;
  std::unique_ptr<platform::Machine> m_before;
};

/// What a call struck by a fault gives, reduced to a number: an HRESULT or CONFIGRET as it is, 0 for a failed BOOL,
/// count or pointer.
using Call = std::uint64_t (*)();

struct FaultRow {
  const char* operation;
  const char* target;
  Call call;
  std::uint64_t result;
  DWORD lastError;
  int errorNumber;
};

std::uint64_t Number(HRESULT result) {
  return static_cast<std::uint32_t>(result);
}
std::uint64_t Number(const void* pointer) {
  return pointer == nullptr ? 0 : 1;
}

SAFEARRAY* SomeArray() {
  static SAFEARRAY array = {};
  return &array;
}

std::uint64_t NameOfForm(COMPUTER_NAME_FORMAT form) {
  wchar_t name[64];
  DWORD size = 64;
  return static_cast<std::uint64_t>(GetComputerNameExW(form, name, &size));
}

constexpr int kSameErrno = contract::kUntouchedErrno;
constexpr DWORD kSameError = contract::kUntouchedError;

const FaultRow kFaultRows[] = {
    {"CoInitializeEx", "", [] { return Number(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }, kFaultCode, kSameError,
     kSameErrno},
    {"CoInitializeSecurity", "",
     [] { return Number(CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 0, nullptr, 0, nullptr)); }, kFaultCode,
     kSameError, kSameErrno},
    {"CoCreateInstance", "",
     [] {
       void* object = nullptr;
       return Number(CoCreateInstance(IID_IUnknown, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object));
     },
     kFaultCode, kSameError, kSameErrno},
    {"CoSetProxyBlanket", "",
     [] {
       contract::CountedObject object;
       return Number(CoSetProxyBlanket(&object, 0, 0, nullptr, 0, 0, nullptr, 0));
     },
     kFaultCode, kSameError, kSameErrno},
    {"SysAllocString", "caf\xC3\xA9 \xF0\x9F\x98\x80 \xEF\xBF\xBD",
     [] {
       const wchar_t text[] = {L'c', L'a', L'f', 0xE9, L' ', 0xD83D, 0xDE00, L' ', 0xDE00, 0};
       return Number(platform::Bstr(text).get());
     },
     0, kSameError, kSameErrno},
    {"SafeArrayCreate", "",
     [] {
       SAFEARRAYBOUND bound = {1, 0};
       return Number(SafeArrayCreate(VT_I4, 1, &bound));
     },
     0, kSameError, kSameErrno},
    {"SafeArrayGetLBound", "",
     [] {
       LONG bound = 0;
       return Number(SafeArrayGetLBound(SomeArray(), 1, &bound));
     },
     kFaultCode, kSameError, kSameErrno},
    {"SafeArrayGetUBound", "",
     [] {
       LONG bound = 0;
       return Number(SafeArrayGetUBound(SomeArray(), 1, &bound));
     },
     kFaultCode, kSameError, kSameErrno},
    {"SafeArrayAccessData", "",
     [] {
       void* data = nullptr;
       return Number(SafeArrayAccessData(SomeArray(), &data));
     },
     kFaultCode, kSameError, kSameErrno},
    {"VariantCopy", "",
     [] {
       platform::Variant target;
       const platform::Variant source;
       return Number(VariantCopy(&target.get(), &source.get()));
     },
     kFaultCode, kSameError, kSameErrno},
    {"AllocateStore", "a store", [] { return Number(platform::AllocateStore("a store", 8)); }, 0, kSameError, ENOMEM},
    {"GetComputerNameExW", "ComputerNameDnsHostname", [] { return NameOfForm(ComputerNameDnsHostname); }, 0, kFaultCode,
     kSameErrno},
    {"GetComputerNameExW", "ComputerNameDnsDomain", [] { return NameOfForm(ComputerNameDnsDomain); }, 0, kFaultCode,
     kSameErrno},
    {"GetTimeFormatW", "HH",
     [] { return static_cast<std::uint64_t>(GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, 0, nullptr, L"HH", nullptr, 0)); }, 0,
     kFaultCode, kSameErrno},
    {"GetDateFormatW", "yyyy",
     [] { return static_cast<std::uint64_t>(GetDateFormatW(LOCALE_SYSTEM_DEFAULT, 0, nullptr, L"yyyy", nullptr, 0)); },
     0, kFaultCode, kSameErrno},
    {"FileTimeToSystemTime", "",
     [] {
       const FILETIME fileTime = {};
       SYSTEMTIME date = {};
       return static_cast<std::uint64_t>(FileTimeToSystemTime(&fileTime, &date));
     },
     0, kFaultCode, kSameErrno},
    {"CM_Locate_DevNode_ExW", "",
     [] {
       DEVINST node = 0;
       return std::uint64_t{CM_Locate_DevNode_ExW(&node, nullptr, 0, nullptr)};
     },
     kFaultCode, kSameError, kSameErrno},
    {"CM_Reenumerate_DevNode_Ex", "", [] { return std::uint64_t{CM_Reenumerate_DevNode_Ex(1, 0, nullptr)}; },
     kFaultCode, kSameError, kSameErrno},
    {"fopen", "no\\such", [] { return Number(platform::OpenTextFile("no\\such", "r")); }, 0, kSameError,
     static_cast<int>(kFaultCode)},
};

TEST(Faults, ComeInPlaceOfTheCallWithItsNameAndTarget) {
  for (const FaultRow& row : kFaultRows) {
    SCOPED_TRACE(testing::Message() << row.operation << ' ' << row.target);
    const PlacedMachine machine;
    int asked = 0;
    machine->onFault = [&](std::string_view operation, std::string_view target) -> std::optional<std::uint32_t> {
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
    EXPECT_EQ(row.result, result);
    EXPECT_EQ(row.lastError, GetLastError());
    EXPECT_EQ(row.errorNumber, errorNumber);
    EXPECT_EQ(1, asked);
  }
}

TEST(Faults, SpareTheMachinesOwnCode) {
  const PlacedMachine machine;
  machine->onFault = [](std::string_view, std::string_view) { return std::optional<std::uint32_t>(kFaultCode); };
  {
    const MachineCode inside;
    const MachineCode deeper;
    EXPECT_TRUE(platform::Bstr(L"text"));
  }
  EXPECT_FALSE(platform::Bstr(L"text"));
}

TEST(Machine, MayUseThePlatformWhileItMakesAnObject) {
  const PlacedMachine machine;
  machine->onFault = [](std::string_view operation, std::string_view) {
    return operation == "SysAllocString" ? std::optional<std::uint32_t>(kFaultCode) : std::nullopt;
  };
  contract::CountedObject made;
  machine->onCreate = [&made](REFCLSID, REFIID riid, void** object) {
    EXPECT_TRUE(platform::Bstr(L"text"));
    errno = EIO;
    return made.QueryInterface(riid, object);
  };
  ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
  contract::SetMarkers();
  platform::ComPtr<IUnknown> object;
  EXPECT_EQ(S_OK, CoCreateInstance(IID_IUnknown, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.putVoid()));
  EXPECT_EQ(contract::kUntouchedError, contract::LastErrorOnly());
  EXPECT_EQ(&made, object.get());
  object.reset();
  EXPECT_EQ(0U, made.references());
  CoUninitialize();
}

TEST(Machine, IsMadeOnceForAllThreads) {
  auto before = ReplaceMachine(nullptr);
  std::vector<platform::Machine*> seen(4);
  std::vector<std::thread> threads;
  threads.reserve(seen.size());
  for (platform::Machine*& slot : seen) {
    threads.emplace_back([&slot] {
      const platform::Bstr text(L"the first use may be any call");
      slot = &platform::TheMachine();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(std::vector<platform::Machine*>(seen.size(), seen.front()), seen);
  ReplaceMachine(std::move(before));
}

TEST(LiveObjects, AreCountedByNameAndKind) {
  const auto liveStores = [] {
    std::map<std::string, std::uint64_t> counts;
    platform::VisitLiveStores(
        [](const char* name, std::uint64_t count, void* context) {
          (*static_cast<std::map<std::string, std::uint64_t>*>(context))[name] = count;
        },
        &counts);
    return counts;
  };
  using Counts = std::map<std::string, std::uint64_t>;
  EXPECT_EQ(Counts(), liveStores());
  void* first = platform::AllocateStore("b", 1);
  void* second = platform::AllocateStore(std::string("b").c_str(), 1); // by its text, wherever that stands
  void* third = platform::AllocateStore("a", 1);
  EXPECT_EQ((Counts{{"a", 1}, {"b", 2}}), liveStores());
  platform::FreeStore(first);
  platform::FreeStore(second);
  platform::FreeStore(third);
  EXPECT_EQ(Counts(), liveStores());

  const platform::LiveObjects before = platform::CountLiveObjects();
  SAFEARRAYBOUND bound = {1, 0};
  SAFEARRAY* array = SafeArrayCreate(VT_BSTR, 1, &bound);
  {
    const platform::Bstr text(L"text");
    LONG index = 0;
    EXPECT_EQ(S_OK, SafeArrayPutElement(array, &index, text.get()));
    EXPECT_EQ(before.bstrs + 2, platform::CountLiveObjects().bstrs);
    EXPECT_EQ(before.safeArrays + 1, platform::CountLiveObjects().safeArrays);
  }
  EXPECT_EQ(S_OK, SafeArrayDestroy(array));
  EXPECT_EQ(before.bstrs, platform::CountLiveObjects().bstrs);
  EXPECT_EQ(before.safeArrays, platform::CountLiveObjects().safeArrays);
}

TEST(DeviceTree, OnlyItsLocalRootIsThere) {
  const PlacedMachine machine;
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

TEST(ExecutableDirectory, IsWhereTheProgramRuns) {
  EXPECT_EQ(std::filesystem::read_symlink("/proc/self/exe").parent_path(), platform::ExecutableDirectory());
  EXPECT_TRUE(std::filesystem::is_directory(platform::ExecutableDirectory()));
}

} // namespace
