#include "wmi/enumerator_security.h"

#include "platform/com_owners.h"
#include "wmi/category_trace.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace korvex {
namespace {

constexpr wchar_t kAuthorityPrefix[] = L"NTLMDOMAIN:";
constexpr std::size_t kAuthorityPrefixLength = 11;
/// A domain holds at most this many characters.
constexpr std::size_t kMaxDomainLength = 259;
constexpr DWORD kKeepLevel = 0xFFFFFFFF;

__attribute__((format(printf, 1, 2))) void Report(const char* format, ...) {
  const int savedErrno = errno;
  std::fflush(stdout);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  errno = savedErrno;
}

std::size_t LengthOf(const wchar_t* text) {
  return text == nullptr ? 0 : std::wcslen(text);
}

bool BeginsWithPrefix(const wchar_t* authority) {
  for (std::size_t index = 0; index < kAuthorityPrefixLength; ++index) {
    const wchar_t letter = authority[index];
    const wchar_t upper = letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
    if (upper != kAuthorityPrefix[index]) {
      return false;
    }
  }
  return true;
}

/// Fills one of the two outputs; none for an absent text.
HRESULT GiveText(const wchar_t* text, std::size_t length, BSTR* out) {
  if (text == nullptr) {
    return S_OK;
  }
  *out = SysAllocStringLen(text, static_cast<UINT>(length));
  return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT GiveDomainAndUser(const wchar_t* domain, std::size_t domainLength, const wchar_t* user, BSTR* domainOut,
                          BSTR* userOut) {
  HRESULT result = GiveText(domain, domainLength, domainOut);
  if (SUCCEEDED(result)) {
    result = GiveText(user, LengthOf(user), userOut);
  }
  if (FAILED(result)) {
    SysFreeString(*domainOut);
    *domainOut = nullptr;
  }
  return result;
}

/// Sets the blanket with explicit credentials.
HRESULT SetBlanketWithIdentity(IUnknown* proxy, const wchar_t* authority, const wchar_t* user, const wchar_t* password,
                               DWORD authnLevel, DWORD impLevel) {
  platform::Bstr parsedDomain;
  platform::Bstr parsedUser;
  const HRESULT parsed = parseAuthority(authority, user, parsedDomain.put(), parsedUser.put());
  if (FAILED(parsed)) {
    Report("parseAuthority Failed\n");
    return parsed;
  }
  using IdentityText = decltype(SEC_WINNT_AUTH_IDENTITY_W::User);
  SEC_WINNT_AUTH_IDENTITY_W identity = {};
  identity.User = reinterpret_cast<IdentityText>(parsedUser.get());
  identity.UserLength = SysStringLen(parsedUser.get());
  identity.Domain = reinterpret_cast<IdentityText>(parsedDomain.get());
  identity.DomainLength = SysStringLen(parsedDomain.get());
  identity.Password = reinterpret_cast<IdentityText>(const_cast<wchar_t*>(password));
  identity.PasswordLength = static_cast<ULONG>(LengthOf(password));
  identity.Flags = SEC_WINNT_AUTH_IDENTITY_UNICODE;
  return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, authnLevel, impLevel, &identity,
                           EOAC_NONE);
}

} // namespace

HRESULT SetEnumeratorSecurity(IWbemServices* services, IEnumWbemClassObject* enumerator, const wchar_t* authority,
                              const wchar_t* user, const wchar_t* password, DWORD authnLevel, DWORD impLevel) {
  DWORD servicesAuthnLevel = 0;
  DWORD servicesImpLevel = 0;
  HRESULT result = getAuth(services, &servicesAuthnLevel, &servicesImpLevel);
  if (FAILED(result)) {
    Report("getAuthFailed\n");
    return result;
  }
  result =
      setInterfaceSec(enumerator, authority, user, password, authnLevel == kKeepLevel ? servicesAuthnLevel : authnLevel,
                      impLevel == kKeepLevel ? servicesImpLevel : impLevel);
  if (FAILED(result)) {
    Report("setInterfaceSec failed - 0x%x\n", Hex(result));
  }
  return result;
}

HRESULT getAuth(IWbemServices* services, DWORD* authnLevelOut, DWORD* impLevelOut) {
  if (services == nullptr || authnLevelOut == nullptr || impLevelOut == nullptr) {
    return WBEM_E_INVALID_PARAMETER;
  }
  platform::ComPtr<IClientSecurity> security;
  const HRESULT result = services->QueryInterface(IID_IClientSecurity, security.putVoid());
  if (FAILED(result)) {
    return result;
  }
  if (!security) {
    return E_NOINTERFACE;
  }
  DWORD authnService = 0;
  DWORD authzService = 0;
  DWORD capabilities = 0;
  return security->QueryBlanket(services, &authnService, &authzService, nullptr, authnLevelOut, impLevelOut, nullptr,
                                &capabilities);
}

HRESULT setInterfaceSec(IUnknown* proxy, const wchar_t* authority, const wchar_t* user, const wchar_t* password,
                        DWORD authnLevel, DWORD impLevel) {
  if (proxy == nullptr) {
    Report("INVALID arg\n");
    return E_INVALIDARG;
  }
  if (authnLevel == RPC_C_AUTHN_LEVEL_NONE) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_NONE,
                             RPC_C_IMP_LEVEL_IDENTIFY, nullptr, EOAC_NONE);
  }
  if (LengthOf(authority) == 0 && LengthOf(user) == 0 && LengthOf(password) == 0) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, authnLevel, impLevel, nullptr,
                             EOAC_NONE);
  }
  return SetBlanketWithIdentity(proxy, authority, user, password, authnLevel, impLevel);
}

HRESULT parseAuthority(const wchar_t* authority, const wchar_t* user, BSTR* domainOut, BSTR* userOut) {
  *domainOut = nullptr;
  *userOut = nullptr;
  const std::size_t authorityLength = LengthOf(authority);
  if (authorityLength >= kAuthorityPrefixLength && !BeginsWithPrefix(authority)) {
    Report("ParseA failed\n");
    return E_INVALIDARG;
  }
  const wchar_t* backslash = user == nullptr ? nullptr : std::wcschr(user, L'\\');
  if (authorityLength > kAuthorityPrefixLength) {
    if (backslash != nullptr) {
      Report("ParseB failed\n");
      return E_INVALIDARG;
    }
    return GiveDomainAndUser(authority + kAuthorityPrefixLength, authorityLength - kAuthorityPrefixLength, user,
                             domainOut, userOut);
  }
  if (backslash == nullptr) {
    return GiveDomainAndUser(nullptr, 0, user, domainOut, userOut);
  }
  const auto domainLength = static_cast<std::size_t>(backslash - user);
  if (domainLength > kMaxDomainLength) {
    // A cut domain would be another domain.
    return E_INVALIDARG;
  }
  return GiveDomainAndUser(user, domainLength, backslash[1] == L'\0' ? nullptr : backslash + 1, domainOut, userOut);
}

} // namespace korvex
