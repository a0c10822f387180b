#include "simhost/host_sections.h"
#include "simhost/registry_tree.h"
#include "simhost/registry_values.h"
#include "simhost/text.h"

#include <algorithm>
#include <set>

// The registry's part of the description.

namespace simhost {

namespace {

constexpr std::size_t kMaxEntries = 1'000'000;

constexpr CodeName kRights[] = {{"full", KEY_ALL_ACCESS}, {"read", KEY_READ}, {"none", 0}};

class RegistryReader {
public:
  explicit RegistryReader(RegistryNode& root) : m_root(root) {}

  /// Reads keys by their paths below the key `above`.
  void ReadKeys(const Node& keys, const std::wstring& above) {
    for (const auto& [name, key] : keys.Entries(kMaxEntries)) {
      const std::wstring path = WideFromUtf8(name);
      if (!IsPath(path)) {
        throw DescriptionError(key.Path() + ": expected names of 1 to 255 UTF-16 units, separated by backslashes");
      }
      ReadKey(key, JoinedPath(above, path));
    }
  }

private:
  static bool IsPath(std::wstring_view path) {
    const std::vector<std::wstring_view> components = PathComponents(path);
    const auto fits = [](std::wstring_view name) { return name.size() <= kMaxKeyName; };
    return !components.empty() && !path.starts_with(L'\\') && !path.ends_with(L'\\') &&
           path.find(L"\\\\") == std::wstring_view::npos && std::ranges::all_of(components, fits);
  }

  void ReadKey(const Node& key, const std::wstring& path) {
    const std::vector<std::wstring_view> components = PathComponents(path);
    if (!m_given.insert(CapitalName(path)).second || components.size() > kMaxKeyDepth) {
      key.Refuse("a key that is given once, by at most 512 names, which are matched without regard to case");
    }
    RegistryNode* above = &m_root;
    for (std::size_t i = 0; i + 1 < components.size(); ++i) {
      above = above->FindOrMake(components[i]).get();
    }
    if (key.IsNull()) {
      above->Remove(components.back());
      return;
    }
    RegistryNode& node = *above->FindOrMake(components.back());
    node.name = components.back();
    ReadMembers(key, [&](Members& members) {
      node.rights = members["access"].Code<REGSAM>(kRights, KEY_ALL_ACCESS, KEY_ALL_ACCESS);
      ReadValues(members["values"], node);
      ReadKeys(members["keys"], path);
    });
  }

  static void ReadValues(const Node& values, RegistryNode& node) {
    for (const auto& [name, value] : values.Entries(kMaxEntries)) {
      const std::wstring wide = WideFromUtf8(name);
      if (!node.values.emplace(CapitalName(wide), RegistryNode::Value{wide, ReadRegistryValue(value)}).second) {
        value.Refuse("a value that is given once; names are matched without regard to case");
      }
    }
  }

  RegistryNode& m_root;
  std::set<std::wstring> m_given; ///< paths by CapitalName
};

} // namespace

void BuildRegistry(const Node& registry, Host& host) {
  RegistryReader(host.registry.Described()).ReadKeys(registry, {});
}

} // namespace simhost
