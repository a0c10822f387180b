#pragma once

#include "platform/wbem.h"

// The security blanket of an instance enumerator. The one place of the layer that reports on standard error.

namespace korvex {

/// Gives `enumerator` the services' levels, or the given ones where they are not 0xFFFFFFFF, with the given credentials
/// (texts may be none or empty). An HRESULT, 0 on success.
HRESULT SetEnumeratorSecurity(IWbemServices* services, IEnumWbemClassObject* enumerator, const wchar_t* authority,
                              const wchar_t* user, const wchar_t* password, DWORD authnLevel, DWORD impLevel);

/// The authentication and impersonation levels of the services' blanket.
HRESULT getAuth(IWbemServices* services, DWORD* authnLevelOut, DWORD* impLevelOut);

/// Sets the blanket of `proxy`.
HRESULT setInterfaceSec(IUnknown* proxy, const wchar_t* authority, const wchar_t* user, const wchar_t* password,
                        DWORD authnLevel, DWORD impLevel);

/// Splits credentials into domain and user: BSTRs that the caller frees, none where a part is absent. A domain of more
/// than 259 characters before the backslash gives E_INVALIDARG without a message.
HRESULT parseAuthority(const wchar_t* authority, const wchar_t* user, BSTR* domainOut, BSTR* userOut);

} // namespace korvex
