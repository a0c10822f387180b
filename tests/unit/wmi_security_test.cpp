#include "tests/unit/support/wmi_test.h"
#include "wmi/enumerator_security.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_common.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

using WmiSecurityTest = WmiTest;

constexpr DWORD kKeep = 0xFFFFFFFF;

/// "domain|user" of parsed credentials, with "-" for what is absent; or the failure.
std::string Parsed(const wchar_t* authority, const wchar_t* user) {
  platform::Bstr domain;
  platform::Bstr name;
  HRESULT result = S_OK;
  const CapturedOutput output = Capture([&] { result = parseAuthority(authority, user, domain.put(), name.put()); });
  EXPECT_EQ(output.out, "");
  if (result != S_OK) {
    EXPECT_EQ(result, E_INVALIDARG);
    EXPECT_FALSE(domain || name);
    return "failed: " + output.err;
  }
  EXPECT_EQ(output.err, "");
  const auto text = [](const platform::Bstr& part) { return part ? "[" + NarrowText(part.get()) + "]" : "-"; };
  return text(domain) + "|" + text(name);
}

TEST(ParseAuthority, SplitsCredentials) {
  struct Row {
    const wchar_t* authority;
    const wchar_t* user;
    const char* parsed;
  };
  constexpr Row kRows[] = {
      {L"NTLMDOMAIN:CORP", L"alice", "[CORP]|[alice]"},
      {L"ntlmDomain:CORP", L"alice", "[CORP]|[alice]"},
      {L"NTLMDOMAIN:CORP", nullptr, "[CORP]|-"},
      {L"NTLMDOMAIN:CORP", L"X\\alice", "failed: ParseB failed\n"},
      {L"NTLMDOMAIN:", L"CORP\\alice", "[CORP]|[alice]"},
      {L"NTLMDOMAIN:", L"alice", "-|[alice]"},
      {L"KERBEROS:HOST", L"alice", "failed: ParseA failed\n"},
      {L"NTLMDOMAIN.CORP", nullptr, "failed: ParseA failed\n"},
      {L"CORP", L"alice", "-|[alice]"},
      {nullptr, L"CORP\\alice", "[CORP]|[alice]"},
      {L"", L"CORP\\alice\\b", "[CORP]|[alice\\b]"},
      {nullptr, L"CORP\\", "[CORP]|-"},
      {nullptr, L"\\alice", "[]|[alice]"},
      {nullptr, L"alice", "-|[alice]"},
      {nullptr, L"", "-|[]"},
      {nullptr, nullptr, "-|-"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(Parsed(row.authority, row.user), row.parsed) << NarrowText(row.authority) << " " << NarrowText(row.user);
  }
}

TEST(ParseAuthority, RefusesDomainsLongerThanTheirRoom) {
  const std::wstring longest(259, L'd');
  EXPECT_EQ(Parsed(nullptr, (longest + L"\\u").c_str()), "[" + std::string(259, 'd') + "]|[u]");
  EXPECT_EQ(Parsed(nullptr, (longest + L"d\\u").c_str()), "failed: ");
}

TEST_F(WmiSecurityTest, SetsTheBlanketOfAProxy) {
  struct Row {
    const wchar_t* authority;
    const wchar_t* user;
    const wchar_t* password;
    DWORD authnLevel;
    const wchar_t* blanket;
  };
  constexpr Row kRows[] = {
      {nullptr, nullptr, nullptr, 5, L"SetBlanket 10 0 5 3 0 -"},
      {L"", L"", L"", 0, L"SetBlanket 10 0 0 3 0 -"},
      {L"NTLMDOMAIN:CORP", L"alice", L"secret", RPC_C_AUTHN_LEVEL_NONE, L"SetBlanket 10 0 1 2 0 -"},
      {L"NTLMDOMAIN:CORP", L"alice", L"secret", 6, L"SetBlanket 10 0 6 3 0 alice@CORP:secret flags 2"},
      {nullptr, nullptr, L"secret", 6, L"SetBlanket 10 0 6 3 0 (none)@(none):secret flags 2"},
      {nullptr, L"CORP\\bob", nullptr, 6, L"SetBlanket 10 0 6 3 0 bob@CORP:(none) flags 2"},
  };
  FakeClassObject* proxy = m_wmi->NewObject({});
  for (const Row& row : kRows) {
    m_wmi->log.clear();
    EXPECT_EQ(setInterfaceSec(proxy, row.authority, row.user, row.password, row.authnLevel, 3), S_OK);
    EXPECT_EQ(m_wmi->log, (std::vector<std::wstring>{row.blanket}));
  }
}

TEST_F(WmiSecurityTest, ReportsWhatFailsOnStandardError) {
  Connect();
  FakeClassObject* proxy = m_wmi->NewObject({});
  const auto report = [](auto&& operation, HRESULT expected) {
    HRESULT result = S_OK;
    const CapturedOutput output = CaptureTraced([&] { result = operation(); });
    EXPECT_EQ(result, expected);
    EXPECT_EQ(output.out, "");
    return output.err;
  };
  EXPECT_EQ(report([] { return setInterfaceSec(nullptr, nullptr, nullptr, nullptr, 0, 0); }, E_INVALIDARG),
            "INVALID arg\n");
  EXPECT_EQ(report([&] { return setInterfaceSec(proxy, L"KERBEROS:HOST", nullptr, nullptr, 0, 0); }, E_INVALIDARG),
            "ParseA failed\nparseAuthority Failed\n");
  EXPECT_EQ(report([&] { return setInterfaceSec(proxy, L"NTLMDOMAIN:A", L"B\\c", nullptr, 0, 0); }, E_INVALIDARG),
            "ParseB failed\nparseAuthority Failed\n");

  OrbWmiClass definition;
  m_wmi->classes[L"C"] = {m_wmi->NewObject({}), {}};
  ASSERT_EQ(definition.Initialize(m_connection, L"C"), kWmiSuccess);
  std::uint8_t isCloned = 0;
  const platform::ComPtr<IEnumWbemClassObject> instances(definition.GetInstanceEnumerator(isCloned));
  IWbemServices* services = m_connection.GetServices();
  const auto secure = [&] { return SetEnumeratorSecurity(services, instances.get(), nullptr, nullptr, nullptr, 0, 0); };
  m_wmi->End("QueryBlanket", E_ACCESSDENIED);
  EXPECT_EQ(report(secure, E_ACCESSDENIED), "getAuthFailed\n");
  m_wmi->End("QueryInterface", E_NOINTERFACE);
  EXPECT_EQ(report(secure, E_NOINTERFACE), "getAuthFailed\n");
  m_wmi->End("SetBlanket", E_ACCESSDENIED);
  EXPECT_EQ(report(secure, E_ACCESSDENIED), "setInterfaceSec failed - 0x80070005\n");
  EXPECT_EQ(report([] { return SetEnumeratorSecurity(nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0); },
                   platform::WbemResult(WBEM_E_INVALID_PARAMETER)),
            "getAuthFailed\n");
  EXPECT_EQ(
      report([&] { return SetEnumeratorSecurity(services, nullptr, nullptr, nullptr, nullptr, 0, 0); }, E_INVALIDARG),
      "INVALID arg\nsetInterfaceSec failed - 0x80070057\n");
}

TEST_F(WmiSecurityTest, SecuresInstancesOnASecuredConnection) {
  Connect();
  m_wmi->classes[L"C"] = {m_wmi->NewObject({}), {}};
  OrbWmiClass definition;
  ASSERT_EQ(definition.Initialize(m_connection, L"C"), kWmiSuccess);
  EXPECT_EQ(m_wmi->log.back(), L"CreateInstanceEnum C 1");
  ASSERT_EQ(m_connection.SetSecurity(), kWmiSuccess);
  EXPECT_EQ(m_wmi->log.back(), L"SetBlanket 4294967295 0 0 3 0 -");
  EXPECT_EQ(m_connection.IsSecured(), 1);

  struct Row {
    DWORD authnLevel;
    DWORD impLevel;
    const wchar_t* blanket;
  };
  // The services' own levels are 6 and 4.
  constexpr Row kRows[] = {{0, 0, L"SetBlanket 10 0 0 0 0 -"},
                           {kKeep, 2, L"SetBlanket 10 0 6 2 0 -"},
                           {5, kKeep, L"SetBlanket 10 0 5 4 0 -"}};
  for (const Row& row : kRows) {
    ASSERT_EQ(definition.SetCredentials(nullptr, L"", nullptr, row.authnLevel, row.impLevel), kWmiSuccess);
    ASSERT_EQ(definition.Initialize(m_connection, L"C"), kWmiSuccess);
    EXPECT_EQ(m_wmi->log.back(), row.blanket);
  }
  ASSERT_EQ(definition.SetCredentials(L"NTLMDOMAIN:CORP", L"alice", L"secret", kKeep, kKeep), kWmiSuccess);
  ASSERT_EQ(definition.Initialize(m_connection, L"C"), kWmiSuccess);
  EXPECT_EQ(m_wmi->log.back(), L"SetBlanket 10 0 6 4 0 alice@CORP:secret flags 2");

  for (const auto& [result, status] : {std::pair{platform::WbemResult(WBEM_E_ACCESS_DENIED), kWmiAccessDenied},
                                       std::pair{E_ACCESSDENIED, kWmiRequestFailed}}) {
    m_wmi->End("SetBlanket", result);
    const Outcome outcome = Traced([&] { return definition.Initialize(m_connection, L"C"); });
    char message[64];
    std::snprintf(message, sizeof message, "(orbWmiClass):AuthorizationFailed.  Error 0x%x\n",
                  static_cast<unsigned>(result));
    EXPECT_EQ(outcome, (Outcome{status, message}));
  }
}

TEST(OrbWmiCommonTest, TakesAComThatRunsAlreadyForAFailure) {
  ASSERT_EQ(OrbWmiCommon::Initialize(), kWmiSuccess);
  EXPECT_EQ(Traced([] { return OrbWmiCommon::Initialize(); }),
            (Outcome{1, "(orbWmiCommon):WMIRequestFailed(CoInitialize).  Error 0x1\n"}));
  EXPECT_EQ(OrbWmiCommon::InitializeSecurity(), kWmiSuccess);
  EXPECT_EQ(Traced([] { return OrbWmiCommon::InitializeSecurity(); }), (Outcome{0, ""}));
  CoUninitialize();
  CoUninitialize();
}

TEST_F(WmiSecurityTest, ConnectsAndCloses) {
  EXPECT_EQ(Traced([&] { return m_connection.Initialize(nullptr); }), (Outcome{5, ""}));
  EXPECT_EQ(Traced([&] { return m_connection.SetSecurity(); }),
            (Outcome{6, "(orbWmiConnection):WMIRequestFailed(ConnectServer).  Error 0x80070057\n"}));

  m_wmi->End("CreateLocator", REGDB_E_CLASSNOTREG);
  EXPECT_EQ(Traced([&] { return m_connection.Initialize(L"root\\WMI"); }),
            (Outcome{6, "(orbWmiConnection):WMIRequestFailed(CoCreateInstance).  Error 0x80040154\n"}));
  m_wmi->End("ConnectServer", platform::WbemResult(WBEM_E_INVALID_NAMESPACE));
  EXPECT_EQ(Traced([&] { return m_connection.Initialize(L"root\\nowhere"); }),
            (Outcome{6, "(orbWmiConnection):WMIRequestFailed(ConnectServer).  Error 0x8004100e\n"}));
  m_wmi->End("ConnectServer", S_OK);
  EXPECT_EQ(m_connection.Initialize(L"root\\WMI"), 6U);
  EXPECT_EQ(m_connection.IsConnected(), 0);
  EXPECT_EQ(gFakeObjectsAlive, 0);

  EXPECT_EQ(Traced([&] { return m_connection.Initialize(L"root\\WMI"); }), (Outcome{0, ""}));
  EXPECT_EQ(m_wmi->log, (std::vector<std::wstring>{L"ConnectServer root\\WMI"}));
  EXPECT_EQ(m_connection.IsConnected(), 1);
  EXPECT_EQ(m_connection.IsSecured(), 0);
  // A second connection replaces the first and is not secured yet.
  EXPECT_EQ(m_connection.SetSecurity(), kWmiSuccess);
  EXPECT_EQ(m_connection.Initialize(L"root\\WMI"), kWmiSuccess);
  EXPECT_EQ(m_connection.IsSecured(), 0);
  EXPECT_EQ(gFakeObjectsAlive, 2);
  m_wmi->End("SetBlanket", E_ACCESSDENIED);
  EXPECT_EQ(Traced([&] { return m_connection.SetSecurity(); }),
            (Outcome{6, "(orbWmiConnection):WMIRequestFailed(ConnectServer).  Error 0x80070005\n"}));
  EXPECT_EQ(m_connection.IsSecured(), 0);
  // The locator is gone, the services stay.
  EXPECT_EQ(gFakeObjectsAlive, 1);
  EXPECT_NE(m_connection.GetServices(), nullptr);

  EXPECT_EQ(CaptureTraced([&] { m_connection.CloseConnection(); }).out, "(orbWmiConnection):CloseConnection\n");
  EXPECT_EQ(m_connection.IsConnected(), 0);
  EXPECT_EQ(m_connection.GetServices(), nullptr);
  EXPECT_EQ(CaptureTraced([&] { m_connection.cleanUp(); }).out, "(orbWmiConnection):cleanUp\n");
  Connect();
  EXPECT_EQ(CaptureTraced([&] { m_connection.cleanUp(); }).out,
            "(orbWmiConnection):cleanUp\n(orbWmiConnection):CloseConnection\n");
}

} // namespace
} // namespace korvex
