#pragma once

#include "platform/posix/machine.h"
#include "simhost/host.h"
#include "simhost/statistics.h"

#include <atomic>
#include <cerrno>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>

// What all COM objects of the host share: identity, reference count, client security and the frame of every call.

namespace simhost {

/// One call of a COM method: keeps the caller's errno and counts as the machine's own code as long as it lives.
class CallScope {
public:
  CallScope() : m_errno(errno) {}
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;
  ~CallScope() { errno = m_errno; }

private:
  platform::MachineCode m_machineCode;
  int m_errno;
};

/// Which interface an object kind carries.
template <class Interface>
struct InterfaceTraits;
template <>
struct InterfaceTraits<IWbemLocator> {
  static constexpr InterfaceKind kKind = InterfaceKind::kLocator;
  static constexpr std::wstring_view kName = L"IWbemLocator";
  static REFIID Id() { return IID_IWbemLocator; }
};
template <>
struct InterfaceTraits<IWbemServices> {
  static constexpr InterfaceKind kKind = InterfaceKind::kServices;
  static constexpr std::wstring_view kName = L"IWbemServices";
  static REFIID Id() { return IID_IWbemServices; }
};
template <>
struct InterfaceTraits<IWbemClassObject> {
  static constexpr InterfaceKind kKind = InterfaceKind::kClassObject;
  static constexpr std::wstring_view kName = L"IWbemClassObject";
  static REFIID Id() { return IID_IWbemClassObject; }
};
template <>
struct InterfaceTraits<IEnumWbemClassObject> {
  static constexpr InterfaceKind kKind = InterfaceKind::kEnumerator;
  static constexpr std::wstring_view kName = L"IEnumWbemClassObject";
  static REFIID Id() { return IID_IEnumWbemClassObject; }
};

/// The security settings of a proxy, as the calls that set and tell them have it.
class Blanket {
public:
  /// Stores the settings, defaults resolved.
  HRESULT Set(IUnknown* proxy, DWORD authnService, DWORD authzService, DWORD authnLevel, DWORD impLevel,
              DWORD capabilities);
  /// Tells the settings; outputs may be none, but not the proxy.
  HRESULT Query(IUnknown* proxy, DWORD* authnService, DWORD* authzService, OLECHAR** principal, DWORD* authnLevel,
                DWORD* impLevel, void** identity, DWORD* capabilities);

private:
  std::mutex m_lock;
  DWORD m_authnService = RPC_C_AUTHN_WINNT;
  DWORD m_authzService = RPC_C_AUTHZ_NONE;
  DWORD m_authnLevel = RPC_C_AUTHN_LEVEL_PKT;
  DWORD m_impLevel = RPC_C_IMP_LEVEL_IMPERSONATE;
  DWORD m_capabilities = EOAC_NONE;
};

/// An object with one WMI interface and client security. Made with one reference, deletes itself with the last.
template <class Interface>
class ComObject : public Interface, public IClientSecurity {
public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    std::wstring_view name;
    void* found = FindInterface(riid, name);
    return Carry(OperationIndex("QueryInterface"), name, {}, [&]() -> HRESULT {
      if (found == nullptr) {
        return E_NOINTERFACE;
      }
      AddRef();
      *object = found;
      return S_OK;
    });
  }

  ULONG STDMETHODCALLTYPE AddRef() override { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

  ULONG STDMETHODCALLTYPE Release() override {
    const CallScope scope;
    const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) {
      delete this;
    }
    return left;
  }

  HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authnService, DWORD* authzService, OLECHAR** principal,
                                         DWORD* authnLevel, DWORD* impLevel, void** identity,
                                         DWORD* capabilities) override {
    return Carry(OperationIndex("QueryBlanket"), InterfaceTraits<Interface>::kName, {}, [&] {
      return m_blanket.Query(proxy, authnService, authzService, principal, authnLevel, impLevel, identity,
                             capabilities);
    });
  }

  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authnService, DWORD authzService, OLECHAR* /*principal*/,
                                       DWORD authnLevel, DWORD impLevel, void* /*identity*/,
                                       DWORD capabilities) override {
    return Carry(OperationIndex("SetBlanket"), InterfaceTraits<Interface>::kName, {},
                 [&] { return m_blanket.Set(proxy, authnService, authzService, authnLevel, impLevel, capabilities); });
  }

  HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* /*proxy*/, IUnknown** copy) override {
    if (copy != nullptr) {
      *copy = nullptr;
    }
    return E_NOTIMPL;
  }

protected:
  explicit ComObject(std::shared_ptr<Host> host) : m_host(std::move(host)) { ++Live(); }
  virtual ~ComObject() { --Live(); }

  /// Carries out a call: counts it, lets a described fault take its place, and turns what is thrown into a result. The
  /// caller has emptied its outputs before.
  template <class Body>
  HRESULT Carry(std::size_t operation, std::wstring_view object, std::wstring_view member, Body body) noexcept {
    const CallScope scope;
    TheStatistics().calls[operation].fetch_add(1, std::memory_order_relaxed);
    try {
      const Fault fault = m_host->faults.Take(operation, object, member);
      if (fault.delay != 0) {
        m_host->clock->Wait(fault.delay);
      }
      if (fault.code) {
        return static_cast<HRESULT>(*fault.code);
      }
      return fault.nothing ? WBEM_S_NO_ERROR : body();
    } catch (const std::bad_alloc&) {
      return WBEM_E_OUT_OF_MEMORY;
    } catch (const std::exception&) {
      return WBEM_E_FAILED;
    }
  }

  const std::shared_ptr<Host>& TheHost() const { return m_host; }

private:
  static std::atomic<std::uint64_t>& Live() {
    return TheStatistics().live[static_cast<std::size_t>(InterfaceTraits<Interface>::kKind)];
  }

  /// The interface and its name; IUnknown is always the same pointer.
  void* FindInterface(REFIID riid, std::wstring_view& name) {
    if (IsEqualIID(riid, IID_IUnknown)) {
      name = L"IUnknown";
      return static_cast<IUnknown*>(static_cast<Interface*>(this));
    }
    if (IsEqualIID(riid, InterfaceTraits<Interface>::Id())) {
      name = InterfaceTraits<Interface>::kName;
      return static_cast<Interface*>(this);
    }
    if (IsEqualIID(riid, IID_IClientSecurity)) {
      name = L"IClientSecurity";
      return static_cast<IClientSecurity*>(this);
    }
    return nullptr;
  }

  std::shared_ptr<Host> m_host;
  std::atomic<ULONG> m_references{1};
  Blanket m_blanket;
};

} // namespace simhost
