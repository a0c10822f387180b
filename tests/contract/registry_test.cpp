#include "platform/registry.h"
#include "platform/registry_key.h"
#include "tests/contract/support/markers.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using platform::RegKey;

/// What a registry call gives; it must leave the last error alone.
template <class Call>
DWORD Code(const Call& call) {
  contract::SetMarkers();
  const auto code = static_cast<DWORD>(call());
  EXPECT_EQ(contract::kUntouchedError, contract::LastErrorOnly());
  return code;
}

DWORD Open(HKEY key, const wchar_t* path, RegKey& opened, REGSAM rights = KEY_ALL_ACCESS) {
  return Code([&] { return RegOpenKeyExW(key, path, 0, rights, opened.put()); });
}
/// Creates a key; gives whether it is new.
DWORD Make(HKEY parent, const wchar_t* path, RegKey& made) {
  DWORD disposition = 0;
  EXPECT_EQ(ERROR_SUCCESS, Code([&] {
              return RegCreateKeyExW(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, made.put(), &disposition);
            }));
  return disposition;
}
DWORD Delete(HKEY key, const wchar_t* path) {
  return Code([&] { return RegDeleteKeyW(key, path); });
}
DWORD Set(HKEY key, const wchar_t* name, DWORD type, const std::vector<BYTE>& data) {
  return Code([&] { return RegSetValueExW(key, name, 0, type, data.data(), static_cast<DWORD>(data.size())); });
}
DWORD Name(HKEY key, DWORD index, std::wstring& name, DWORD room = 256) {
  name.assign(room, L'#');
  DWORD length = room;
  const DWORD code =
      Code([&] { return RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr); });
  name.resize(length);
  return code;
}
/// Subkeys and their longest name, values, their longest name and data; or the code of a failure.
std::vector<DWORD> Counts(HKEY key) {
  std::vector<DWORD> n(5);
  const DWORD code = Code([&] {
    return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &n[0], &n[1], nullptr, &n[2], &n[3], &n[4], nullptr,
                            nullptr);
  });
  return code == ERROR_SUCCESS ? n : std::vector{code};
}

/// A key of its own, removed with all below it at the end.
class Registry : public testing::Test {
protected:
  Registry() { Make(HKEY_LOCAL_MACHINE, L"Software\\korvex contract test", scratch); }
  ~Registry() override { Remove(scratch.get(), L""); }

  static void Remove(HKEY parent, const wchar_t* path) {
    RegKey key;
    Open(parent, path, key);
    for (std::wstring name; Name(key.get(), 0, name) == ERROR_SUCCESS;) {
      Remove(key.get(), name.c_str());
    }
    EXPECT_EQ(ERROR_SUCCESS, Delete(parent, path));
  }

  RegKey scratch;
  RegKey last;
  std::wstring name;
};

TEST_F(Registry, KeysKeepTheirNamesAndOrderAndAreFoundIgnoringCase) {
  for (const wchar_t* path : {L"zeta", L"Lun#b", L"lun#A", L"LUN_", L"Alpha\\one\\two"}) {
    EXPECT_EQ(REG_CREATED_NEW_KEY, Make(scratch.get(), path, last)) << path;
  }
  EXPECT_EQ(REG_OPENED_EXISTING_KEY, Make(scratch.get(), L"ALPHA\\ONE", last));
  DWORD index = 0;
  for (const wchar_t* next : {L"Alpha", L"lun#A", L"Lun#b", L"LUN_", L"zeta"}) {
    EXPECT_EQ(ERROR_SUCCESS, Name(scratch.get(), index++, name));
    EXPECT_EQ(next, name);
  }
  EXPECT_EQ(ERROR_NO_MORE_ITEMS, Name(scratch.get(), 5, name));
  EXPECT_EQ(ERROR_SUCCESS, Name(scratch.get(), 0, name, 6));
  EXPECT_EQ(ERROR_MORE_DATA, Name(scratch.get(), 0, name, 5));
  EXPECT_EQ(L"#####", name);
  EXPECT_EQ((std::vector<DWORD>{5, 5, 0, 0, 0}), Counts(scratch.get()));
  EXPECT_EQ(ERROR_SUCCESS, Open(scratch.get(), L"alpha\\ONE\\Two", last));
  EXPECT_EQ(ERROR_SUCCESS, Open(scratch.get(), nullptr, last));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(scratch.get(), L"alpha\\three", last));
}

TEST_F(Registry, ValuesAreKeptWithTheirTypes) {
  EXPECT_EQ(ERROR_SUCCESS, Set(scratch.get(), L"Policy", REG_DWORD, {1, 0, 0, 0}));
  EXPECT_EQ(ERROR_SUCCESS, Set(scratch.get(), L"POLICY", REG_DWORD, {2, 0, 0, 0x80}));
  EXPECT_EQ(ERROR_SUCCESS, Set(scratch.get(), nullptr, 77, {9, 8, 7, 6, 5}));
  EXPECT_EQ((std::vector<DWORD>{0, 0, 2, 6, 5}), Counts(scratch.get()));
  struct {
    const wchar_t* name;
    DWORD room, code, type, bytes;
  } const rows[] = {{L"policy", 4, ERROR_SUCCESS, REG_DWORD, 4},
                    {L"policy", 3, ERROR_MORE_DATA, REG_DWORD, 4},
                    {L"missing", 8, ERROR_FILE_NOT_FOUND, 0, 8},
                    {L"", 8, ERROR_SUCCESS, 77, 5}};
  BYTE data[8] = {};
  for (const auto& row : rows) {
    DWORD type = 0;
    DWORD bytes = row.room;
    EXPECT_EQ(row.code, Code([&] { return RegQueryValueExW(scratch.get(), row.name, nullptr, &type, data, &bytes); }));
    EXPECT_EQ(row.bytes, bytes) << row.name;
    EXPECT_EQ(row.type, row.type == 0 ? 0 : type) << row.name;
  }
  EXPECT_EQ((std::vector<BYTE>{9, 8, 7, 6, 5}), std::vector<BYTE>(data, data + 5));
  DWORD bytes = 0;
  EXPECT_EQ(ERROR_SUCCESS,
            Code([&] { return RegQueryValueExW(scratch.get(), L"", nullptr, nullptr, nullptr, &bytes); }));
  EXPECT_EQ(5U, bytes) << "without room, asked for the size alone";
}

TEST_F(Registry, KeysAndHandlesEnd) {
  Make(scratch.get(), L"above\\below", last);
  EXPECT_EQ(ERROR_ACCESS_DENIED, Delete(scratch.get(), L"above"));
  EXPECT_EQ(ERROR_SUCCESS, Delete(scratch.get(), L"ABOVE\\Below"));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, Delete(scratch.get(), L"above\\below"));
  RegKey other;
  EXPECT_EQ(REG_CREATED_NEW_KEY, Make(scratch.get(), L"above\\below", other));
  EXPECT_EQ(std::vector<DWORD>{ERROR_KEY_DELETED}, Counts(last.get()));
  EXPECT_EQ(ERROR_KEY_DELETED, Name(last.get(), 0, name));
  EXPECT_EQ(ERROR_KEY_DELETED, Set(last.get(), L"value", REG_DWORD, {0, 0, 0, 0}));
  EXPECT_EQ(ERROR_KEY_DELETED, Open(last.get(), L"deeper", other));
  ASSERT_EQ(ERROR_SUCCESS, Open(scratch.get(), L"", last, KEY_SET_VALUE));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Name(last.get(), 0, name));
  EXPECT_EQ(ERROR_SUCCESS, Set(last.get(), L"value", REG_DWORD, {0, 0, 0, 0}));
  ASSERT_EQ(ERROR_SUCCESS, Open(scratch.get(), L"", last, KEY_READ));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Set(last.get(), L"value", REG_DWORD, {0, 0, 0, 0}));
  EXPECT_EQ(REG_CREATED_NEW_KEY, Make(last.get(), L"made", other)) << "what the key grants counts, not the handle";
  EXPECT_EQ(ERROR_SUCCESS, Delete(last.get(), L"MADE"));
  const HKEY handle = last.get();
  last.reset();
  EXPECT_EQ(std::vector<DWORD>{ERROR_INVALID_HANDLE}, Counts(handle));
  EXPECT_EQ(ERROR_INVALID_HANDLE, Code([&] { return RegCloseKey(handle); }));
  EXPECT_EQ(ERROR_INVALID_HANDLE, Open(nullptr, L"Software", last));
  EXPECT_EQ(ERROR_SUCCESS, Code([] { return RegCloseKey(HKEY_LOCAL_MACHINE); }));
}

} // namespace
