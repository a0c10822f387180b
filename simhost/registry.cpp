#include "simhost/registry.h"

#include "simhost/registry_tree.h"
#include "simhost/registry_values.h"
#include "simhost/text.h"

#include <algorithm>
#include <stdexcept>

namespace simhost {

namespace {

constexpr std::string_view kStatePrefix = "registry/";
constexpr std::size_t kMaxValueName = 16383;

/// Whether the state can hold the name: its units are UTF-16.
bool IsText(std::wstring_view name) {
  return WideFromUtf8(Utf8FromWide(name)) == name;
}

/// How many components lead to a key that is there; `place` becomes the last of these keys.
template <class Place>
std::size_t Descend(Place& place, const std::vector<std::wstring_view>& components) {
  std::size_t found = 0;
  while (found < components.size()) {
    std::shared_ptr<RegistryNode> next = place.node->Find(components[found]);
    if (next == nullptr) {
      break;
    }
    place.path = JoinedPath(place.path, next->name);
    place.node = std::move(next);
    ++found;
  }
  return found;
}

Json EntryOf(bool isCreated, const std::map<std::wstring, RegistryNode::Value>& values) {
  Json::Object written;
  for (const auto& [capitals, value] : values) {
    written.emplace_back(Utf8FromWide(value.name), WriteRegistryValue(value.value));
  }
  Json::Object entry;
  if (isCreated) {
    entry.emplace_back("created", true);
  }
  entry.emplace_back("values", std::move(written));
  return entry;
}

void TakeEntry(const Node& entry, RegistryNode& node) {
  ReadMembers(entry, [&node](Members& members) {
    node.isCreated = members["created"].Flag(false);
    node.rights = node.isCreated ? KEY_ALL_ACCESS : node.rights;
    node.values.clear();
    for (const auto& [name, value] : members["values"].Entries(SIZE_MAX)) {
      std::wstring wide = WideFromUtf8(name);
      node.values.insert_or_assign(CapitalName(wide), RegistryNode::Value{wide, ReadRegistryValue(value)});
    }
  });
}

void AppendListing(std::string& listing, const RegistryNode& node, const std::wstring& path) {
  if (!path.empty()) {
    listing += "[" + Utf8FromWide(path) + "]\n";
  }
  for (const auto& [capitals, value] : node.values) {
    listing += Json(Utf8FromWide(value.name)).Write() + "=" + WriteRegistryValue(value.value).Write() + "\n";
  }
  for (const auto& [capitals, subkey] : node.subkeys) {
    AppendListing(listing, *subkey, JoinedPath(path, subkey->name));
  }
}

} // namespace

/// A key held open.
class Registry::Key final : public platform::RegistryKey {
public:
  Key(std::shared_ptr<Registry> registry, Place place) : m_registry(std::move(registry)), m_place(std::move(place)) {}

  const std::wstring& Path() const override { return m_place.path; }

  REGSAM Rights() override {
    const std::scoped_lock lock(m_registry->m_lock);
    return m_place.node->rights;
  }

  DWORD Open(std::wstring_view path, std::shared_ptr<RegistryKey>& opened) override {
    Place place;
    const DWORD result = m_registry->Open(m_place, path, place);
    if (result == ERROR_SUCCESS) {
      opened = std::make_shared<Key>(m_registry, std::move(place));
    }
    return result;
  }

  DWORD Create(std::wstring_view path, std::shared_ptr<RegistryKey>& opened, bool& isNew) override {
    Place place;
    const DWORD result = m_registry->Create(m_place, path, place, isNew);
    if (result == ERROR_SUCCESS) {
      opened = std::make_shared<Key>(m_registry, std::move(place));
    }
    return result;
  }

  DWORD Count(platform::RegistryCounts& counts) override {
    return m_registry->Reading(m_place, [&]() -> DWORD {
      counts = {};
      for (const auto& [capitals, subkey] : m_place.node->subkeys) {
        counts.longestSubkey = std::max(counts.longestSubkey, static_cast<DWORD>(subkey->name.size()));
      }
      for (const auto& [capitals, value] : m_place.node->values) {
        counts.longestValueName = std::max(counts.longestValueName, static_cast<DWORD>(value.name.size()));
        counts.longestData = std::max(counts.longestData, static_cast<DWORD>(value.value.data.size()));
      }
      counts.subkeys = static_cast<DWORD>(m_place.node->subkeys.size());
      counts.values = static_cast<DWORD>(m_place.node->values.size());
      return ERROR_SUCCESS;
    });
  }

  DWORD SubkeyName(DWORD index, std::wstring& name) override {
    return m_registry->Reading(m_place, [&]() -> DWORD {
      const RegistryNode::Subkeys& subkeys = m_place.node->subkeys;
      if (index >= subkeys.size()) {
        return ERROR_NO_MORE_ITEMS;
      }
      name = subkeys.find_by_order(index)->second->name;
      return ERROR_SUCCESS;
    });
  }

  DWORD ReadValue(std::wstring_view name, platform::RegistryValue& value) override {
    return m_registry->Reading(m_place, [&]() -> DWORD {
      const auto found = m_place.node->values.find(CapitalName(name));
      if (found == m_place.node->values.end()) {
        return ERROR_FILE_NOT_FOUND;
      }
      value = found->second.value;
      return ERROR_SUCCESS;
    });
  }

  DWORD WriteValue(std::wstring_view name, platform::RegistryValue value) override {
    return m_registry->WriteValue(m_place, name, std::move(value));
  }

  DWORD Delete() override { return m_registry->Delete(m_place); }

private:
  std::shared_ptr<Registry> m_registry;
  Place m_place;
};

Registry::Registry(StateLog& state) : m_state(state), m_described(std::make_shared<RegistryNode>()) {}

void Registry::Start() {
  StartOver();
  m_state.Watch(std::string(kStatePrefix), *this);
}

std::shared_ptr<platform::RegistryKey> Registry::OpenRoot(std::shared_ptr<Registry> self) {
  std::shared_ptr<RegistryNode> root;
  {
    const std::scoped_lock lock(self->m_lock);
    root = self->m_root;
  }
  return std::make_shared<Key>(std::move(self), Place{root, root, {}});
}

std::string Registry::Listing() {
  m_state.Refresh();
  const std::scoped_lock lock(m_lock);
  std::string listing;
  AppendListing(listing, *m_root, {});
  return listing;
}

void Registry::StartOver() {
  const std::scoped_lock lock(m_lock);
  m_root = m_described->Copy();
  m_stateKeys.clear();
}

void Registry::Take(std::string_view key, const Json* value) {
  if (value == nullptr) {
    return; // only a key that stands there in another spelling is cleared
  }
  const std::wstring path = WideFromUtf8(key.substr(kStatePrefix.size()));
  const std::vector<std::wstring_view> components = PathComponents(path);
  const Node entry(*value, "/" + std::string(key));
  if (components.size() > kMaxKeyDepth) {
    entry.Refuse("a path of fewer names");
  }
  const std::scoped_lock lock(m_lock);
  m_stateKeys.insert_or_assign(CapitalName(path), std::string(key));
  const bool isDeleted = value->IfText() != nullptr && *value->IfText() == "deleted";
  Place place{m_root, m_root, {}};
  if (isDeleted) {
    if (!components.empty() && Descend(place, {components.begin(), components.end() - 1}) + 1 == components.size()) {
      place.node->Remove(components.back());
    }
    return;
  }
  for (const std::wstring_view component : components) {
    place.node = place.node->FindOrMake(component);
  }
  if (!components.empty()) {
    place.node->name = components.back();
  }
  TakeEntry(entry, *place.node);
}

/// Whether the key is there. One that was opened before the registry started over is found again by its path.
bool Registry::IsThere(Place& place) const {
  if (place.root != m_root && !place.node->isDeleted) {
    Place again{m_root, m_root, {}};
    const std::vector<std::wstring_view> components = PathComponents(place.path);
    if (Descend(again, components) != components.size()) {
      return false;
    }
    place.root = std::move(again.root);
    place.node = std::move(again.node);
  }
  return !place.node->isDeleted;
}

/// Carries out what only reads, for a key that has not been deleted.
template <class Read>
DWORD Registry::Reading(Place& place, Read read) {
  try {
    m_state.Refresh();
  } catch (const std::runtime_error&) {
    return ERROR_CANTREAD;
  }
  const std::scoped_lock lock(m_lock);
  return IsThere(place) ? read() : ERROR_KEY_DELETED;
}

/// Carries out what changes the registry; nothing has changed when it does not give ERROR_SUCCESS.
template <class Change>
DWORD Registry::Changing(Place& place, Change change) {
  DWORD result = ERROR_SUCCESS;
  try {
    m_state.Update([&](StateChange& changes) {
      const std::scoped_lock lock(m_lock);
      result = IsThere(place) ? change(changes) : ERROR_KEY_DELETED;
    });
  } catch (const std::runtime_error&) {
    return ERROR_CANTWRITE;
  }
  return result;
}

DWORD Registry::Open(Place& from, std::wstring_view path, Place& opened) {
  if (path.starts_with(L'\\')) {
    return ERROR_BAD_PATHNAME;
  }
  const std::vector<std::wstring_view> components = PathComponents(path);
  return Reading(from, [&]() -> DWORD {
    opened = from;
    return Descend(opened, components) == components.size() ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

DWORD Registry::Create(Place& from, std::wstring_view path, Place& opened, bool& isNew) {
  if (path.starts_with(L'\\')) {
    return ERROR_BAD_PATHNAME;
  }
  const std::vector<std::wstring_view> components = PathComponents(path);
  const DWORD result = Changing(from, [&](StateChange& change) -> DWORD {
    Place place = from;
    const std::size_t found = Descend(place, components);
    isNew = found != components.size();
    if (isNew && (place.node->rights & KEY_CREATE_SUB_KEY) == 0) {
      return ERROR_ACCESS_DENIED;
    }
    const bool fits = std::ranges::all_of(
        components, [](std::wstring_view name) { return name.size() <= kMaxKeyName && IsText(name); });
    if (!fits || PathComponents(from.path).size() + components.size() > kMaxKeyDepth) {
      return isNew ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
    }
    for (std::size_t i = found; i < components.size(); ++i) {
      place.path = JoinedPath(place.path, components[i]);
      Record(change, place.path, EntryOf(true, {}));
    }
    return ERROR_SUCCESS;
  });
  return result == ERROR_SUCCESS ? Open(from, path, opened) : result;
}

DWORD Registry::WriteValue(Place& place, std::wstring_view name, platform::RegistryValue value) {
  if (name.size() > kMaxValueName || !IsText(name)) {
    return ERROR_INVALID_PARAMETER;
  }
  return Changing(place, [&](StateChange& change) -> DWORD {
    auto values = place.node->values;
    RegistryNode::Value& written =
        values.try_emplace(CapitalName(name), RegistryNode::Value{std::wstring(name), {}}).first->second;
    written.value = std::move(value);
    Record(change, place.path, EntryOf(place.node->isCreated, values));
    return ERROR_SUCCESS;
  });
}

DWORD Registry::Delete(Place& place) {
  return Changing(place, [&](StateChange& change) -> DWORD {
    if (place.path.empty() || !place.node->subkeys.empty()) {
      return ERROR_ACCESS_DENIED;
    }
    Record(change, place.path, "deleted");
    return ERROR_SUCCESS;
  });
}

/// Puts a key's entry into the change, in place of one in another spelling.
void Registry::Record(StateChange& change, const std::wstring& path, Json value) const {
  std::string key = std::string(kStatePrefix) + Utf8FromWide(path);
  const auto before = m_stateKeys.find(CapitalName(path));
  if (before != m_stateKeys.end() && before->second != key) {
    change.Clear(before->second);
  }
  change.Set(std::move(key), std::move(value));
}

} // namespace simhost
