#include "simhost/com_object.h"

namespace simhost {

HRESULT Blanket::Set(IUnknown* proxy, DWORD authnService, DWORD authzService, DWORD authnLevel, DWORD impLevel,
                     DWORD capabilities) {
  if (proxy == nullptr) {
    return E_INVALIDARG;
  }
  const std::scoped_lock lock(m_lock);
  m_authnService = authnService == RPC_C_AUTHN_DEFAULT ? RPC_C_AUTHN_WINNT : authnService;
  m_authzService = authzService;
  m_authnLevel = authnLevel == RPC_C_AUTHN_LEVEL_DEFAULT ? RPC_C_AUTHN_LEVEL_PKT : authnLevel;
  m_impLevel = impLevel == RPC_C_IMP_LEVEL_DEFAULT ? RPC_C_IMP_LEVEL_IMPERSONATE : impLevel;
  m_capabilities = capabilities;
  return S_OK;
}

HRESULT Blanket::Query(IUnknown* proxy, DWORD* authnService, DWORD* authzService, OLECHAR** principal,
                       DWORD* authnLevel, DWORD* impLevel, void** identity, DWORD* capabilities) {
  if (proxy == nullptr) {
    return E_INVALIDARG;
  }
  const std::scoped_lock lock(m_lock);
  const auto tell = [](auto* output, auto value) {
    if (output != nullptr) {
      *output = value;
    }
  };
  tell(authnService, m_authnService);
  tell(authzService, m_authzService);
  tell(principal, static_cast<OLECHAR*>(nullptr));
  tell(authnLevel, m_authnLevel);
  tell(impLevel, m_impLevel);
  tell(identity, static_cast<void*>(nullptr));
  tell(capabilities, m_capabilities);
  return S_OK;
}

} // namespace simhost
