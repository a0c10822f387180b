#include "platform/registry_key.h"
#include "simhost/host.h"
#include "simhost/machine.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

// What the registry's calls do to a described registry. How it is described and listed is shown by transcripts.

namespace simhost {
namespace {

using platform::RegKey;

class RegistryTest : public testing::Test {
protected:
  ~RegistryTest() override {
    platform::ReplaceMachine(nullptr);
    std::filesystem::remove(m_state);
  }

  /// Starts a machine, or starts it again, with what was done to it before.
  void Begin(const std::string& description) {
    m_host = ReadHost(description, m_state);
    platform::ReplaceMachine(MakeSimulatedMachine(m_host));
  }
  std::string Listing() { return m_host->registry.Listing(); }

  static DWORD Open(const wchar_t* path, RegKey& key, REGSAM rights = KEY_ALL_ACCESS) {
    return static_cast<DWORD>(RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, rights, key.put()));
  }
  static DWORD Make(const wchar_t* path) {
    RegKey key;
    return static_cast<DWORD>(
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(), nullptr));
  }
  static DWORD Delete(const wchar_t* path) { return static_cast<DWORD>(RegDeleteKeyW(HKEY_LOCAL_MACHINE, path)); }
  static DWORD Set(const wchar_t* path, const wchar_t* name, BYTE value) {
    RegKey key;
    const DWORD opened = Open(path, key, KEY_SET_VALUE);
    return opened != ERROR_SUCCESS ? opened : SetIn(key, name, value);
  }
  static DWORD SetIn(const RegKey& key, const wchar_t* name, BYTE value) {
    const BYTE data[4] = {value};
    return static_cast<DWORD>(RegSetValueExW(key.get(), name, 0, REG_DWORD, data, 4));
  }

  const std::string m_state = "registry_test." + std::to_string(getpid()) + ".jsonl";
  std::shared_ptr<Host> m_host;
};

TEST_F(RegistryTest, ChangesLastAndAreSeenByOtherRuns) {
  const std::string description = R"({"registry": {"A": {"values": {"v": 1}, "keys": {"b": {"values": {"old": 1}}}}}})";
  Begin(description);
  const std::unique_ptr<Host> other = ReadHost(description, m_state);
  EXPECT_EQ(ERROR_SUCCESS, Set(L"a", L"V", 7));
  EXPECT_EQ(ERROR_SUCCESS, Set(L"a", L"w", 8));
  EXPECT_EQ(ERROR_SUCCESS, Delete(L"a\\B"));
  EXPECT_EQ(ERROR_SUCCESS, Make(L"a\\c\\d"));
  EXPECT_EQ(ERROR_SUCCESS, Delete(L"a\\C\\d"));
  EXPECT_EQ(ERROR_SUCCESS, Make(L"A\\B"));
  EXPECT_EQ(ERROR_SUCCESS, Set(L"a\\b", L"new", 9));
  const std::string listing = "[A]\n\"v\"=7\n\"w\"=8\n[A\\B]\n\"new\"=9\n[A\\c]\n";
  EXPECT_EQ(listing, Listing());
  EXPECT_EQ(listing, other->registry.Listing());
  Begin(description);
  EXPECT_EQ(listing, Listing());
}

TEST_F(RegistryTest, OpenKeysOutlastWhatAnotherRunDoesToTheFileOfTheState) {
  const std::string description = R"({"registry": {"A": {"values": {"v": 1}}}})";
  Begin(description);
  const std::unique_ptr<Host> other = ReadHost(description, m_state);
  EXPECT_EQ(ERROR_SUCCESS, Make(L"A\\made"));
  EXPECT_EQ(ERROR_SUCCESS, Make(L"A\\lost"));
  RegKey described;
  RegKey made;
  RegKey lost;
  Open(L"a", described);
  Open(L"a\\MADE", made);
  Open(L"a\\lost", lost);
  const auto size = [this] { return std::filesystem::file_size(m_state); };
  for (std::uint64_t i = 0, last = 0; last <= size(); ++i) {
    last = size();
    other->state.Set("n", i);
  }
  EXPECT_EQ(ERROR_SUCCESS, Delete(L"A\\lost"));
  EXPECT_EQ(ERROR_SUCCESS, SetIn(described, L"v", 2));
  EXPECT_EQ(ERROR_SUCCESS, SetIn(made, L"w", 3));
  EXPECT_EQ(ERROR_KEY_DELETED, SetIn(lost, L"x", 4));
  EXPECT_EQ("[A]\n\"v\"=2\n[A\\made]\n\"w\"=3\n", Listing());
  std::filesystem::remove(m_state);
  EXPECT_EQ("[A]\n\"v\"=1\n", Listing());
  EXPECT_EQ(ERROR_KEY_DELETED, SetIn(made, L"w", 5));
  EXPECT_EQ(ERROR_SUCCESS, SetIn(described, L"v", 6));
}

TEST_F(RegistryTest, RightsAndFaultsStrikeTheirKeys) {
  Begin(R"({"registry": {"k\\read": {"access": "read"}, "k\\none": {"access": "none"}, "k\\x": {}, "k\\lost": {}},
            "faults": [{"operation": "RegOpenKeyExW", "target": "K\\X", "occurrence": 2, "give": "key deleted"},
                       {"operation": "RegOpenKeyExW", "target": "lost", "give": "nothing"},
                       {"operation": "RegSetValueExW", "target": "k\\x\\v", "give": "access denied"},
                       {"operation": "RegSetValueExW", "target": "w", "give": 0},
                       {"operation": "RegCloseKey", "target": "x", "give": 6}]})");
  RegKey key;
  EXPECT_EQ(ERROR_ACCESS_DENIED, Open(L"k\\read", key));
  EXPECT_EQ(ERROR_SUCCESS, Open(L"k\\read", key, KEY_READ));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Open(L"k\\none", key, KEY_QUERY_VALUE));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Delete(L"k\\read"));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Make(L"k\\none\\below"));
  EXPECT_EQ(ERROR_SUCCESS, Open(L"k\\lost", key));
  EXPECT_FALSE(key);
  EXPECT_EQ(ERROR_ACCESS_DENIED, Set(L"k\\x", L"v", 1));
  EXPECT_EQ(ERROR_KEY_DELETED, Set(L"k\\x", L"v", 1));
  EXPECT_EQ(ERROR_SUCCESS, Set(L"k\\x", L"w", 1));
  EXPECT_EQ(0U, platform::CountLiveObjects().handles);
  EXPECT_EQ("[k]\n[k\\lost]\n[k\\none]\n[k\\read]\n[k\\x]\n", Listing());
}

} // namespace
} // namespace simhost
