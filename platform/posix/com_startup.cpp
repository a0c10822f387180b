#include "platform/com.h"
#include "platform/com_owners.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/machine.h"

#include <mutex>

// COM's state: started per thread, alive in the process while any thread has it started.

namespace {

struct ComState {
  std::mutex mutex;
  /// CoInitializeEx calls not yet undone, over all threads.
  std::uint64_t starts = 0;
  bool securityIsSet = false;
};

ComState gCom;
thread_local std::uint64_t gThreadStarts = 0;

bool ComIsStarted() {
  const std::scoped_lock lock(gCom.mutex);
  return gCom.starts != 0;
}

} // namespace

HRESULT CoInitializeEx(void* reserved, DWORD flags) {
  if (const auto fault = platform::FaultOf("CoInitializeEx")) {
    return static_cast<HRESULT>(*fault);
  }
  if (reserved != nullptr || flags != COINIT_MULTITHREADED) {
    return E_INVALIDARG;
  }
  const std::scoped_lock lock(gCom.mutex);
  ++gCom.starts;
  return gThreadStarts++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
  if (gThreadStarts == 0) {
    return;
  }
  const std::scoped_lock lock(gCom.mutex);
  --gThreadStarts;
  if (--gCom.starts == 0) {
    gCom.securityIsSet = false;
  }
}

HRESULT CoInitializeSecurity(PSECURITY_DESCRIPTOR /*descriptor*/, LONG /*serviceCount*/,
                             SOLE_AUTHENTICATION_SERVICE* /*services*/, void* /*reserved1*/, DWORD /*authnLevel*/,
                             DWORD /*impLevel*/, void* /*authList*/, DWORD /*capabilities*/, void* /*reserved3*/) {
  if (const auto fault = platform::FaultOf("CoInitializeSecurity")) {
    return static_cast<HRESULT>(*fault);
  }
  const std::scoped_lock lock(gCom.mutex);
  if (gCom.starts == 0) {
    return CO_E_NOTINITIALIZED;
  }
  if (gCom.securityIsSet) {
    return RPC_E_TOO_LATE;
  }
  gCom.securityIsSet = true;
  return S_OK;
}

HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID riid, void** object) {
  if (object == nullptr) {
    return E_POINTER;
  }
  *object = nullptr;
  if (const auto fault = platform::FaultOf("CoCreateInstance")) {
    return static_cast<HRESULT>(*fault);
  }
  if (!ComIsStarted()) {
    return CO_E_NOTINITIALIZED;
  }
  if ((context & CLSCTX_INPROC_SERVER) == 0) {
    return REGDB_E_CLASSNOTREG;
  }
  if (outer != nullptr) {
    return CLASS_E_NOAGGREGATION;
  }
  const platform::ErrnoGuard guard;
  platform::Machine& machine = platform::TheMachine();
  const platform::MachineCode inside;
  return machine.CreateComObject(classId, riid, object);
}

HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authnService, DWORD authzService, OLECHAR* principal, DWORD authnLevel,
                          DWORD impLevel, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
  if (const auto fault = platform::FaultOf("CoSetProxyBlanket")) {
    return static_cast<HRESULT>(*fault);
  }
  if (proxy == nullptr) {
    return E_INVALIDARG;
  }
  platform::ComPtr<IClientSecurity> security;
  const HRESULT found = proxy->QueryInterface(IID_IClientSecurity, security.putVoid());
  if (FAILED(found)) {
    return found;
  }
  if (!security) {
    return E_NOINTERFACE;
  }
  return security->SetBlanket(proxy, authnService, authzService, principal, authnLevel, impLevel, identity,
                              capabilities);
}
