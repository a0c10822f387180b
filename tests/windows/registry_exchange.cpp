#include "simhost/host.h"
#include "simhost/registry_tree.h"
#include "simhost/registry_values.h"
#include "simhost/text.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>

// Puts the keys that a host describes into the system's own registry before a run, and takes them out after it:
//
//   registry_exchange enter   stores the keys of host.json, or those of host.registry.kept when that is there
//   registry_exchange leave   writes the keys that are there now to host.registry and host.registry.kept, as the
//                             simulated host lists its own, and removes them
//
// Both work in the current directory. What is taken out are the keys of described services (below SYSTEM, four names),
// and elsewhere the first two names of a path; what the system itself has there must not be described.

namespace {

using simhost::RegistryNode;

/// How many names of a path make the key that is taken out whole: those of a service, and two elsewhere.
std::size_t TopLength(const std::vector<std::wstring_view>& names) {
  return !names.empty() && simhost::CapitalName(names[0]) == L"SYSTEM" ? 4 : 2;
}

void Require(LSTATUS result, const std::wstring& path) {
  if (result != ERROR_SUCCESS) {
    throw std::runtime_error(simhost::Utf8FromWide(path) + ": error " + std::to_string(result));
  }
}

/// An open key of the system's registry.
class Key {
public:
  explicit Key(const std::wstring& path) {
    Require(RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr),
            path);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() { RegCloseKey(m_key); }
  HKEY get() const { return m_key; }

private:
  HKEY m_key = nullptr;
};

/// Where a listing speaks of the key at the top, its names.
using Tops = std::map<std::wstring, std::wstring>;

/// Stores a key with its values and all below it; `path` is empty for the root, which is not stored itself.
void Store(const RegistryNode& node, const std::wstring& path, Tops& tops) {
  const auto names = simhost::PathComponents(path);
  if (names.size() >= TopLength(names)) {
    std::wstring top;
    for (const std::wstring_view name : std::span(names).first(TopLength(names))) {
      top = simhost::JoinedPath(top, name);
    }
    tops.emplace(simhost::CapitalName(top), top);
    const Key key(path);
    for (const auto& [capitals, value] : node.values) {
      Require(RegSetValueExW(key.get(), value.name.c_str(), 0, value.value.type, value.value.data.data(),
                             static_cast<DWORD>(value.value.data.size())),
              path);
    }
  }
  for (const auto& [capitals, subkey] : node.subkeys) {
    Store(*subkey, simhost::JoinedPath(path, subkey->name), tops);
  }
}

/// Reads what the system has of a key into `node`.
void Read(HKEY above, const std::wstring& name, RegistryNode& node) {
  HKEY key = nullptr;
  Require(RegOpenKeyExW(above, name.c_str(), 0, KEY_READ, &key), name);
  std::wstring text(16384, L'\0');
  std::vector<std::uint8_t> data(1U << 20);
  for (DWORD index = 0;; ++index) {
    auto length = static_cast<DWORD>(text.size());
    auto size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    if (RegEnumValueW(key, index, text.data(), &length, nullptr, &type, data.data(), &size) != ERROR_SUCCESS) {
      break;
    }
    const std::wstring valueName(text, 0, length);
    node.values[simhost::CapitalName(valueName)] = {valueName, {type, {data.begin(), data.begin() + size}}};
  }
  for (DWORD index = 0;; ++index) {
    auto length = static_cast<DWORD>(text.size());
    if (RegEnumKeyExW(key, index, text.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      break;
    }
    const std::wstring subkey(text, 0, length);
    Read(key, subkey, *node.FindOrMake(subkey));
  }
  RegCloseKey(key);
}

std::string ReadFileText(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFileText(const char* path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// The description that a kept listing amounts to: keys by their paths with their values.
std::string DescriptionOf(const std::string& listing) {
  simhost::Json::Object keys;
  simhost::Json::Object values;
  std::string path;
  const auto close = [&] {
    if (!path.empty()) {
      keys.emplace_back(path, simhost::Json::Object{{"values", std::move(values)}});
      values = {};
    }
  };
  for (std::size_t at = 0; at < listing.size();) {
    const std::size_t end = listing.find('\n', at);
    const std::string line = listing.substr(at, end - at);
    at = end + 1;
    if (line.front() == '[') {
      close();
      path = line.substr(1, line.size() - 2);
    } else {
      std::size_t quote = 1;
      while (line[quote] != '"') {
        quote += line[quote] == '\\' ? 2U : 1U;
      }
      values.emplace_back(*simhost::ParseJson(line.substr(0, quote + 1)).IfText(),
                          simhost::ParseJson(line.substr(quote + 2)));
    }
  }
  close();
  return simhost::Json(simhost::Json::Object{{"registry", std::move(keys)}}).Write();
}

constexpr const char* kKept = "host.registry.kept";
constexpr const char* kTops = "host.registry.tops";

void Enter() {
  const std::string kept = ReadFileText(kKept);
  const auto host = simhost::ReadHost(kept.empty() ? ReadFileText("host.json") : DescriptionOf(kept), "");
  Tops tops;
  Store(host->registry.Described(), {}, tops);
  std::string listed;
  for (const auto& [capitals, top] : tops) {
    listed += simhost::Utf8FromWide(top) + "\n";
  }
  WriteFileText(kTops, listed);
}

void Leave() {
  simhost::Host host("");
  const std::string tops = ReadFileText(kTops);
  for (std::size_t at = 0; at < tops.size();) {
    const std::size_t end = tops.find('\n', at);
    const std::wstring top = simhost::WideFromUtf8(tops.substr(at, end - at));
    at = end + 1;
    RegistryNode* node = &host.registry.Described();
    for (const std::wstring_view name : simhost::PathComponents(top)) {
      node = node->FindOrMake(name).get();
    }
    Read(HKEY_LOCAL_MACHINE, top, *node);
    Require(RegDeleteTreeW(HKEY_LOCAL_MACHINE, top.c_str()), top);
  }
  host.registry.Start();
  const std::string listing = host.registry.Listing();
  WriteFileText("host.registry", listing);
  WriteFileText(kKept, listing);
}

} // namespace

int main(int argc, char** argv) {
  try {
    const std::string_view action = argc == 2 ? argv[1] : "";
    if (action != "enter" && action != "leave") {
      throw std::runtime_error("usage: registry_exchange enter | leave");
    }
    action == "enter" ? Enter() : Leave();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "registry_exchange: %s\n", error.what());
    return 1;
  }
}
