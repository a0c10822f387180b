#include "platform/error.h"
#include "platform/files.h"
#include "platform/posix/errno_guard.h"
#include "platform/posix/faults.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/paths.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <vector>

// Walks over the entries of a directory. The entries are those that are there when a walk begins.

namespace {

namespace fs = std::filesystem;

struct Entry {
  std::string name;
  bool isDirectory = false;
};

struct Search {
  std::string pattern;
  std::vector<Entry> entries;
  std::size_t next = 0;
};
using SearchRef = std::shared_ptr<Search>;

/// Of static life without an end, as the machine's.
platform::HandleTable<SearchRef>& OpenSearches() {
  static auto& searches = *new platform::HandleTable<SearchRef>;
  return searches;
}

char Upper(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

/// Whether the name matches a pattern of letters, `?` for any one and `*` for any number of characters.
bool Matches(const char* pattern, const char* name) {
  const char* afterStar = nullptr;
  const char* retry = nullptr;
  while (*name != '\0') {
    if (*pattern == '*') {
      afterStar = ++pattern;
      retry = name;
    } else if (*pattern == '?' || (*pattern != '\0' && Upper(*pattern) == Upper(*name))) {
      ++pattern;
      ++name;
    } else if (afterStar != nullptr) {
      pattern = afterStar;
      name = ++retry;
    } else {
      return false;
    }
  }
  while (*pattern == '*') {
    ++pattern;
  }
  return *pattern == '\0';
}

bool IsBefore(const Entry& left, const Entry& right) {
  const auto isSame = [](char one, char other) { return Upper(one) == Upper(other); };
  const auto [inLeft, inRight] = std::ranges::mismatch(left.name, right.name, isSame);
  if (inLeft == left.name.end() && inRight == right.name.end()) {
    return left.name < right.name;
  }
  return inRight != right.name.end() && (inLeft == left.name.end() || static_cast<unsigned char>(Upper(*inLeft)) <
                                                                          static_cast<unsigned char>(Upper(*inRight)));
}

/// The directory's matching entries; the code of what went wrong.
DWORD List(const fs::path& directory, const std::string& pattern, std::vector<Entry>& entries) {
  std::error_code error;
  fs::directory_iterator walk(directory.empty() ? fs::path(".") : directory, error);
  if (error) {
    std::error_code ignored;
    const DWORD missing = fs::exists(directory, ignored) ? ERROR_DIRECTORY : ERROR_PATH_NOT_FOUND;
    return error == std::errc::permission_denied ? ERROR_ACCESS_DENIED : missing;
  }
  for (; !error && walk != fs::directory_iterator(); walk.increment(error)) {
    Entry entry{walk->path().filename().string()};
    if (Matches(pattern.c_str(), entry.name.c_str())) {
      std::error_code ignored;
      entry.isDirectory = walk->is_directory(ignored);
      entries.push_back(std::move(entry));
    }
  }
  if (error) {
    return ERROR_GEN_FAILURE;
  }
  std::ranges::sort(entries, IsBefore);
  return entries.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

/// Gives the next entry; a name longer than the room is left out.
bool Take(Search& search, WIN32_FIND_DATAA& found) {
  while (search.next < search.entries.size()) {
    const Entry& entry = search.entries[search.next++];
    if (entry.name.size() >= sizeof found.cFileName) {
      continue;
    }
    found = {};
    found.dwFileAttributes = entry.isDirectory ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
    std::memcpy(found.cFileName, entry.name.c_str(), entry.name.size() + 1);
    return true;
  }
  return false;
}

HANDLE FailToOpen(DWORD code) {
  SetLastError(code);
  return INVALID_HANDLE_VALUE;
}

BOOL Fail(DWORD code) {
  SetLastError(code);
  return FALSE;
}

HANDLE Begin(const std::string& pattern, WIN32_FIND_DATAA& found) {
  const fs::path whole(pattern);
  auto search = std::make_shared<Search>(Search{pattern, {}, 0});
  const DWORD code = List(whole.parent_path(), whole.filename().string(), search->entries);
  if (code != ERROR_SUCCESS) {
    return FailToOpen(code);
  }
  if (!Take(*search, found)) {
    return FailToOpen(ERROR_FILE_NOT_FOUND);
  }
  return reinterpret_cast<HANDLE>(OpenSearches().Add(std::move(search))); // NOLINT
}

} // namespace

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* found) {
  const platform::ErrnoGuard guard;
  if (pattern == nullptr || found == nullptr) {
    return FailToOpen(ERROR_INVALID_PARAMETER);
  }
  try {
    const std::string hostPattern = platform::HostPath(pattern);
    if (const auto fault = platform::FaultOf("FindFirstFileA", std::string_view(hostPattern))) {
      return FailToOpen(*fault);
    }
    return Begin(hostPattern, *found);
  } catch (const std::bad_alloc&) {
    return FailToOpen(ERROR_NOT_ENOUGH_MEMORY);
  }
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* found) {
  const platform::ErrnoGuard guard;
  const SearchRef search = OpenSearches().Find(reinterpret_cast<std::uintptr_t>(handle)).value_or(nullptr);
  if (search == nullptr || found == nullptr) {
    return Fail(search == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
  }
  if (const auto fault = platform::FaultOf("FindNextFileA", std::string_view(search->pattern))) {
    return Fail(*fault);
  }
  return Take(*search, *found) ? TRUE : Fail(ERROR_NO_MORE_FILES);
}

BOOL FindClose(HANDLE handle) {
  return OpenSearches().Remove(reinterpret_cast<std::uintptr_t>(handle)) ? TRUE : Fail(ERROR_INVALID_HANDLE);
}
