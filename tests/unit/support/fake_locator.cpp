#include "tests/unit/support/fake_locator.h"

#ifdef _WIN32
#include <stdexcept>
#else
#include "platform/posix/machine.h"

#include <string>
#include <vector>
#endif

namespace korvex {

#ifdef _WIN32
namespace {

/// The class of the locator; lives as long as the process.
class LocatorFactory final : public IClassFactory {
public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    const bool isKnown = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory);
    *object = isKnown ? this : nullptr;
    return isKnown ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* /*outer*/, REFIID riid, void** object) override {
    return create(riid, object, context);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

  CreateLocator create = nullptr;
  void* context = nullptr;
};

LocatorFactory gFactory;
DWORD gRegistration = 0;

} // namespace

void SetLocatorMaker(CreateLocator create, void* context) {
  gFactory.create = create;
  gFactory.context = context;
  if (gRegistration != 0) {
    CoRevokeClassObject(gRegistration);
    gRegistration = 0;
  }
  if (create != nullptr && FAILED(CoRegisterClassObject(CLSID_WbemLocator, &gFactory, CLSCTX_INPROC_SERVER,
                                                        REGCLS_MULTIPLEUSE, &gRegistration))) {
    throw std::runtime_error("the class of the WMI locator cannot be registered");
  }
}
#else
namespace {

/// A machine that has nothing but the WMI locator and the faults of a test.
class LocatorMachine final : public platform::Machine {
public:
  LocatorMachine(CreateLocator create, void* context) : m_create(create), m_context(context) {}

  std::optional<std::uint32_t> TakeFault(std::string_view operation, std::string_view target) override {
    for (auto fault = m_faults.begin(); fault != m_faults.end(); ++fault) {
      if (fault->operation == operation && fault->target == target && --fault->occurrence == 0) {
        const std::uint32_t code = fault->code;
        m_faults.erase(fault);
        return code;
      }
    }
    return std::nullopt;
  }
  HRESULT CreateComObject(REFCLSID classId, REFIID riid, void** object) override {
    return IsEqualGUID(classId, CLSID_WbemLocator) ? m_create(riid, object, m_context) : REGDB_E_CLASSNOTREG;
  }
  std::optional<std::wstring> ComputerName(COMPUTER_NAME_FORMAT /*form*/, DWORD& error) override {
    error = 1;
    return std::nullopt;
  }
  std::uint64_t Now() override { return 0; }
  void Wait(std::uint32_t /*milliseconds*/) override {}
  CONFIGRET LocateDeviceTreeRoot(DEVINST& /*node*/) override { return CR_FAILURE; }
  CONFIGRET ReenumerateDeviceNode(DEVINST /*node*/) override { return CR_FAILURE; }

  struct Fault {
    std::string operation;
    std::string target;
    std::uint32_t code;
    unsigned occurrence;
  };
  std::vector<Fault> m_faults;

private:
  CreateLocator m_create;
  void* m_context;
};

LocatorMachine* gMachine = nullptr;
std::unique_ptr<platform::Machine> gMachineBefore;

} // namespace

void SetLocatorMaker(CreateLocator create, void* context) {
  if (gMachine != nullptr) {
    platform::ReplaceMachine(std::move(gMachineBefore));
    gMachine = nullptr;
  }
  if (create != nullptr) {
    auto machine = std::make_unique<LocatorMachine>(create, context);
    gMachine = machine.get();
    gMachineBefore = platform::ReplaceMachine(std::move(machine));
  }
}

void AddPlatformFault(const char* operation, const char* target, std::uint32_t code, unsigned occurrence) {
  gMachine->m_faults.push_back({operation, target, code, occurrence});
}
#endif

} // namespace korvex
