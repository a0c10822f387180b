#include "platform/com.h"
#include "tests/contract/support/counted_object.h"
#include "tests/contract/support/system_under_test.h"

#include <gtest/gtest.h>
#include <thread>
#include <tuple>

namespace {

constexpr CLSID kNoClass = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};

HRESULT StartCom() {
  return CoInitializeEx(nullptr, COINIT_MULTITHREADED);
}

HRESULT CreateNoClass() {
  int somewhere = 0;
  void* object = &somewhere;
  const HRESULT result = CoCreateInstance(kNoClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object);
  EXPECT_EQ(nullptr, object);
  return result;
}

HRESULT SetSecurity() {
  return CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT, RPC_C_IMP_LEVEL_IMPERSONATE,
                              nullptr, EOAC_NONE, nullptr);
}

TEST(ComStart, IsPerThreadAndCountedAndNeededForObjects) {
  EXPECT_EQ(CO_E_NOTINITIALIZED, CreateNoClass());
  EXPECT_EQ(S_OK, StartCom());
  EXPECT_EQ(S_FALSE, StartCom());
  std::thread([] {
    EXPECT_EQ(REGDB_E_CLASSNOTREG, CreateNoClass()); // though the thread has not started COM itself
    EXPECT_EQ(S_OK, StartCom());
    CoUninitialize();
  }).join();
  CoUninitialize();
  EXPECT_EQ(S_FALSE, StartCom());
  CoUninitialize();
  EXPECT_EQ(REGDB_E_CLASSNOTREG, CreateNoClass());
  CoUninitialize();
  EXPECT_EQ(CO_E_NOTINITIALIZED, CreateNoClass());
  EXPECT_EQ(E_POINTER, CoCreateInstance(kNoClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, nullptr));
}

TEST(ComStart, SecurityIsSetOnce) {
  if (contract::RunsUnderWine()) {
    GTEST_SKIP() << "Wine takes every CoInitializeSecurity, started or not";
  }
  EXPECT_EQ(CO_E_NOTINITIALIZED, SetSecurity());
  ASSERT_EQ(S_OK, StartCom());
  EXPECT_EQ(S_OK, SetSecurity());
  EXPECT_EQ(RPC_E_TOO_LATE, SetSecurity());
  CoUninitialize();
}

/// A proxy that keeps the blanket it was given and answers with a chosen result.
class Proxy : public contract::Counted<IClientSecurity> {
public:
  explicit Proxy(HRESULT answer) : Counted(IID_IClientSecurity), m_answer(answer) {}

  HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                         DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authnService, DWORD authzService, OLECHAR* principal,
                                       DWORD authnLevel, DWORD impLevel, void* identity, DWORD capabilities) override {
    blanket = {proxy, authnService, authzService, principal, authnLevel, impLevel, identity, capabilities};
    return m_answer;
  }
  HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }

  using Blanket = std::tuple<IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*, DWORD>;
  Blanket blanket;

private:
  HRESULT m_answer;
};

TEST(ProxyBlanket, IsSetThroughTheProxysOwnSecurity) {
  wchar_t principal[] = L"principal";
  int identity = 0;
  for (const HRESULT answer : {HRESULT{S_OK}, HRESULT{E_ACCESSDENIED}}) {
    Proxy proxy(answer);
    EXPECT_EQ(answer, CoSetProxyBlanket(&proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, principal, RPC_C_AUTHN_LEVEL_PKT,
                                        RPC_C_IMP_LEVEL_IMPERSONATE, &identity, EOAC_NONE));
    EXPECT_EQ(0U, proxy.references());
    EXPECT_EQ(Proxy::Blanket(&proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, principal, RPC_C_AUTHN_LEVEL_PKT,
                             RPC_C_IMP_LEVEL_IMPERSONATE, &identity, EOAC_NONE),
              proxy.blanket);
  }
  contract::CountedObject withoutSecurity;
  EXPECT_EQ(E_NOINTERFACE,
            CoSetProxyBlanket(&withoutSecurity, RPC_C_AUTHN_DEFAULT, RPC_C_AUTHZ_NONE, nullptr,
                              RPC_C_AUTHN_LEVEL_DEFAULT, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE));
  EXPECT_EQ(0U, withoutSecurity.references());
}

} // namespace
