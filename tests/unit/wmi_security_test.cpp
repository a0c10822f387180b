#include "platform/com_owners.h"
#include "tests/unit/support/test_object.h"
#include "tests/unit/support/traced.h"
#include "wmi/enumerator_security.h"
#include "wmi/orb_wmi_common.h"
#include "wmi/trace_text.h"

#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

/// "domain|user" of parsed credentials, with "-" for what is absent; or the failure.
std::string Parsed(const wchar_t* authority, const wchar_t* user) {
  platform::Bstr domain;
  platform::Bstr name;
  HRESULT result = S_OK;
  const CapturedOutput output = Capture([&] { result = parseAuthority(authority, user, domain.put(), name.put()); });
  if (result != S_OK) {
    EXPECT_EQ(result, E_INVALIDARG);
    EXPECT_FALSE(domain || name);
    return "failed: " + output.err;
  }
  const auto text = [](const platform::Bstr& part) { return part ? "[" + NarrowText(part.get()) + "]" : "-"; };
  return text(domain) + "|" + text(name);
}

TEST(ParseAuthority, SplitsCredentials) {
  const std::wstring longest(259, L'd');
  const struct {
    const wchar_t* authority;
    std::wstring user;
    std::string parsed;
  } rows[] = {
      {L"NTLMDOMAIN:CORP", L"alice", "[CORP]|[alice]"},
      {L"ntlmDomain:CORP", L"alice", "[CORP]|[alice]"},
      {L"NTLMDOMAIN:CORP", L"X\\alice", "failed: ParseB failed\n"},
      {L"NTLMDOMAIN:", L"CORP\\alice", "[CORP]|[alice]"},
      {L"KERBEROS:HOST", L"alice", "failed: ParseA failed\n"},
      {L"CORP", L"alice", "-|[alice]"},
      {nullptr, L"CORP\\alice", "[CORP]|[alice]"},
      {L"", L"CORP\\alice\\b", "[CORP]|[alice\\b]"},
      {nullptr, L"CORP\\", "[CORP]|-"},
      {nullptr, L"\\alice", "[]|[alice]"},
      {nullptr, L"", "-|[]"},
      {nullptr, longest + L"\\u", "[" + std::string(259, 'd') + "]|[u]"},
      {nullptr, longest + L"d\\u", "failed: "},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Parsed(row.authority, row.user.c_str()), row.parsed) << "row " << &row - rows;
  }
  EXPECT_EQ(Parsed(L"NTLMDOMAIN:CORP", nullptr), "[CORP]|-");
  EXPECT_EQ(Parsed(nullptr, nullptr), "-|-");
}

TEST(SetInterfaceSecurity, SetsTheBlanketOfAProxy) {
  constexpr struct {
    const wchar_t* authority;
    const wchar_t* user;
    const wchar_t* password;
    DWORD authnLevel;
    const wchar_t* blanket;
  } kRows[] = {
      {nullptr, nullptr, nullptr, 5, L"10 0 5 3 0 "},
      {L"", L"", L"", 0, L"10 0 0 3 0 "},
      {L"NTLMDOMAIN:CORP", L"alice", L"secret", RPC_C_AUTHN_LEVEL_NONE, L"10 0 1 2 0 "},
      {L"NTLMDOMAIN:CORP", L"alice", L"secret", 6, L"10 0 6 3 0 alice@CORP:secret flags 2"},
      {nullptr, nullptr, L"secret", 6, L"10 0 6 3 0 (none)@(none):secret flags 2"},
      {nullptr, L"CORP\\bob", nullptr, 6, L"10 0 6 3 0 bob@CORP:(none) flags 2"},
  };
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  for (const auto& row : kRows) {
    TestObject proxy;
    EXPECT_EQ(setInterfaceSec(&proxy, row.authority, row.user, row.password, row.authnLevel, 3), S_OK);
    EXPECT_EQ(proxy.blanket, row.blanket);
  }
  CoUninitialize();
}

TEST(OrbWmiCommonTest, TakesAComThatRunsAlreadyForAFailure) {
  ASSERT_EQ(OrbWmiCommon::Initialize(), kWmiSuccess);
  EXPECT_EQ(Traced(&OrbWmiCommon::Initialize), "1 (orbWmiCommon):WMIRequestFailed(CoInitialize).  Error 0x1\n");
  OrbWmiCommon::InitializeSecurity();
  EXPECT_EQ(Traced(&OrbWmiCommon::InitializeSecurity), "0 ") << "set already";
  CoUninitialize();
  CoUninitialize();
}

} // namespace
} // namespace korvex
