#include "platform/file_handle.h"
#include "platform/files.h"
#include "tests/contract/support/markers.h"
#include "tests/contract/support/system_under_test.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>

// Files, directories and searches as the record files need them.

namespace {

namespace fs = std::filesystem;
using contract::Fails;
using contract::Left;
using contract::Succeeds;
using contract::Try;
using platform::FileHandle;

constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr fs::perms kWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

/// A directory with the file "ten" of ten bytes, the read-only file "fixed" and the directory "inner".
class Files : public testing::Test {
protected:
  const fs::path scratch = fs::temp_directory_path() / ("contract-" + std::to_string(std::random_device()()));

  Files() {
    fs::create_directories(scratch / "inner");
    std::ofstream(scratch / "ten", std::ios::binary) << "0123456789";
    std::ofstream(scratch / "fixed", std::ios::binary) << "fixed";
    fs::permissions(scratch / "fixed", kWrite, fs::perm_options::remove);
  }
  ~Files() override {
    fs::permissions(scratch / "fixed", kWrite, fs::perm_options::add);
    fs::remove_all(scratch);
  }
  std::string Path(const char* name) const { return scratch.string() + '\\' + name; }

  /// How a file is opened, and the last error that this leaves when it fails, or 0.
  struct Opening {
    const char* name;
    DWORD error = ERROR_SUCCESS;
    DWORD access = kReadWrite;
    DWORD disposition = OPEN_ALWAYS;
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    DWORD sharing = kShareAll;
  };
  FileHandle Open(const Opening& how) const {
    contract::SetMarkers();
    FileHandle file(CreateFileA(Path(how.name).c_str(), how.access, how.sharing, nullptr, how.disposition,
                                how.attributes, nullptr));
    const DWORD error = contract::LastErrorOnly();
    EXPECT_EQ(file ? DWORD{ERROR_SUCCESS} : error, how.error) << how.name << ' ' << how.access << ' ' << how.sharing;
    return file;
  }
};

TEST_F(Files, OpenOrTellWhyNot) {
  // Read-only files are documented not to be written; Wine asks the host, which lets root write everything.
  const DWORD readOnly = contract::RunsUnderWine() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
  const Opening rows[] = {
      {"missing", ERROR_FILE_NOT_FOUND, GENERIC_READ, OPEN_EXISTING},
      {"no directory\\new", ERROR_PATH_NOT_FOUND},
      {"ten\\new", ERROR_PATH_NOT_FOUND},
      {"in*er", ERROR_INVALID_NAME},
      {"fixed", ERROR_SUCCESS, GENERIC_READ, OPEN_EXISTING},
      {"fixed", readOnly},
      {"inner", ERROR_ACCESS_DENIED},
      {"inner", ERROR_SUCCESS, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS},
  };
  for (const Opening& row : rows) {
    Open(row);
  }
  for (const DWORD left : {DWORD{ERROR_SUCCESS}, DWORD{ERROR_ALREADY_EXISTS}}) {
    Open({"made"});
    EXPECT_EQ(GetLastError(), left);
  }
}

TEST_F(Files, ReadWriteAndMove) {
  FileHandle file = Open({"ten"});
  char text[16] = {};
  DWORD count = 77;
  const auto read = [&] { return Try([&] { return ReadFile(file.get(), text, 16, &count, nullptr); }); };
  const auto write = [&] { return Try([&] { return WriteFile(file.get(), "abc", 3, &count, nullptr); }); };
  const auto flush = [&] { return Try([&] { return FlushFileBuffers(file.get()); }); };
  const auto move = [&](LONG distance, DWORD origin) {
    return Try([&] { return SetFilePointer(file.get(), distance, nullptr, origin); });
  };
  EXPECT_EQ(move(7, FILE_CURRENT), Succeeds(7));
  EXPECT_EQ(read(), Succeeds());
  EXPECT_EQ(std::string(text, count), "789");
  EXPECT_EQ(read(), Succeeds());
  EXPECT_EQ(count, 0U) << "at the end";
  EXPECT_EQ(move(-1, FILE_BEGIN), (Left{-1, ERROR_NEGATIVE_SEEK}));
  EXPECT_EQ(move(0, 3), (Left{-1, ERROR_INVALID_PARAMETER}));
  EXPECT_EQ(move(-8, FILE_END), Succeeds(2));
  EXPECT_EQ(write(), Succeeds());
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(move(2, FILE_END), Succeeds(12));
  EXPECT_EQ(write(), Succeeds());
  EXPECT_EQ(flush(), Succeeds());
  EXPECT_EQ(move(0, FILE_BEGIN), Succeeds(0));
  EXPECT_EQ(read(), Succeeds());
  EXPECT_EQ(std::string(text, count), std::string("01abc56789\0\0abc", 15));

  file = Open({"ten", ERROR_SUCCESS, GENERIC_READ});
  EXPECT_EQ(write(), Fails(ERROR_ACCESS_DENIED));
  EXPECT_EQ(flush(), Fails(ERROR_ACCESS_DENIED));
  file = Open({"ten", ERROR_SUCCESS, GENERIC_WRITE});
  EXPECT_EQ(read(), Fails(ERROR_ACCESS_DENIED));
  HANDLE closed = file.release();
  EXPECT_EQ(Try([&] { return CloseHandle(closed); }), Succeeds());
  EXPECT_EQ(Try([&] { return CloseHandle(closed); }), Fails(ERROR_INVALID_HANDLE));
  EXPECT_EQ(Try([&] { return WriteFile(closed, "", 0, &count, nullptr); }), Fails(ERROR_INVALID_HANDLE));
}

TEST_F(Files, AreSharedAndDeletedAsThoseAllowWhoHaveThemOpen) {
  const auto remove = [&](const char* name) { return Try([&] { return DeleteFileA(Path(name).c_str()); }); };
  FileHandle file = Open({"ten"});
  Open({"ten"});
  Open({"ten", ERROR_SHARING_VIOLATION, GENERIC_READ, OPEN_EXISTING, 0, FILE_SHARE_READ});
  file.reset();
  file = Open({"ten", ERROR_SUCCESS, GENERIC_READ, OPEN_EXISTING, 0, FILE_SHARE_READ});
  Open({"ten", ERROR_SHARING_VIOLATION});
  Open({"ten", ERROR_SUCCESS, GENERIC_READ});
  EXPECT_EQ(remove("ten"), Fails(ERROR_SHARING_VIOLATION));
  file.reset();
  EXPECT_EQ(remove("ten"), Succeeds());
  EXPECT_EQ(remove("ten"), Fails(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(remove("inner"), Fails(ERROR_ACCESS_DENIED));
  EXPECT_EQ(remove("fixed"), Fails(ERROR_ACCESS_DENIED));
}

TEST_F(Files, AreFoundInTheOrderOfTheirNames) {
  const auto make = [&](const char* path) {
    return Try([&] { return CreateDirectoryA(Path(path).c_str(), nullptr); });
  };
  EXPECT_EQ(make("inner\\E.wwn"), Succeeds());
  EXPECT_EQ(make("inner\\E.wwn"), Fails(ERROR_ALREADY_EXISTS));
  EXPECT_EQ(make("no directory\\inner"), Fails(ERROR_PATH_NOT_FOUND));
  for (const char* name : {"inner\\b.wwn", "inner\\A.wwn", "inner\\c d.WWN", "inner\\wwn", "inner\\b.txt"}) {
    Open({name});
  }
  WIN32_FIND_DATAA found;
  HANDLE search = FindFirstFileA(Path("inner\\*.wwn").c_str(), &found);
  ASSERT_NE(search, INVALID_HANDLE_VALUE);
  std::string names;
  Left next = Succeeds();
  while (next == Succeeds()) {
    names += std::string(found.cFileName) + ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? "\\ " : " ");
    next = Try([&] { return FindNextFileA(search, &found); });
  }
  EXPECT_EQ(next, Fails(ERROR_NO_MORE_FILES));
  EXPECT_EQ(names, "A.wwn b.wwn c d.WWN E.wwn\\ ");
  EXPECT_NE(FindClose(search), FALSE);

  // What is no directory has a code of its own; Wine finds fault with the name.
  const DWORD notDirectory = contract::RunsUnderWine() ? ERROR_INVALID_NAME : ERROR_DIRECTORY;
  for (const auto& [pattern, error] : {std::pair<const char*, DWORD>{"*.none", ERROR_FILE_NOT_FOUND},
                                       {"no directory\\*.wwn", ERROR_PATH_NOT_FOUND},
                                       {"ten\\*.wwn", notDirectory}}) {
    const Left none =
        Try([&, pattern = pattern] { return FindFirstFileA(Path(pattern).c_str(), &found) != INVALID_HANDLE_VALUE; });
    EXPECT_EQ(none, Fails(error)) << pattern;
  }
}

TEST(ModulePath, IsCutToItsRoom) {
  char path[1024];
  const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string whole(path);
  EXPECT_EQ(length, whole.size());
  EXPECT_EQ(whole.find('/'), std::string::npos);
  EXPECT_EQ(GetModuleFileNameA(nullptr, path, length + 1), length);
  EXPECT_EQ(Try([&] { return GetModuleFileNameA(nullptr, path, length); }),
            (Left{static_cast<int>(length), ERROR_INSUFFICIENT_BUFFER}));
  if (!contract::RunsUnderWine()) { // which leaves out the documented terminator
    EXPECT_EQ(path, whole.substr(0, length - 1));
  }
}

} // namespace
