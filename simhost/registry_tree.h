#pragma once

#include "platform/posix/machine.h"

#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The registry's keys in memory.

namespace simhost {

/// Longest name of a key, in UTF-16 units.
inline constexpr std::size_t kMaxKeyName = 255;

/// The name with its letters (A to Z and those up to U+00FF) as capitals: equal names give equal texts, and the order
/// of these texts is that of enumerations.
std::wstring CapitalName(std::wstring_view name);

/// The components of a path between its backslashes, as parts of it; empty ones do not count.
std::vector<std::wstring_view> PathComponents(std::wstring_view path);
/// Not of a text that is gone before its components.
std::vector<std::wstring_view> PathComponents(std::wstring&& path) = delete;

/// The path of a key below another one.
std::wstring JoinedPath(std::wstring_view path, std::wstring_view name);

struct RegistryNode {
  struct Value {
    std::wstring name; ///< as written
    platform::RegistryValue value;
  };
  /// By CapitalName. A place is found by its name as well as by its number in logarithmic time.
  using Subkeys = __gnu_pbds::tree<std::wstring, std::shared_ptr<RegistryNode>, std::less<>, __gnu_pbds::rb_tree_tag,
                                   __gnu_pbds::tree_order_statistics_node_update>;

  std::wstring name; ///< as written
  REGSAM rights = KEY_ALL_ACCESS;
  bool isCreated = false; ///< since the description
  bool isDeleted = false;
  std::map<std::wstring, Value> values; ///< by CapitalName
  Subkeys subkeys;

  /// The subkey of that name, or none.
  std::shared_ptr<RegistryNode> Find(std::wstring_view subkey) const;
  /// The same, making it when it is not there.
  std::shared_ptr<RegistryNode> FindOrMake(std::wstring_view subkey);
  /// Takes a subkey out, if it is there; it and all below it are deleted then.
  void Remove(std::wstring_view subkey);
  /// Marks the key and all below it as deleted.
  void MarkDeleted();
  /// A copy of the key and of all below it.
  std::shared_ptr<RegistryNode> Copy() const;
};

} // namespace simhost
