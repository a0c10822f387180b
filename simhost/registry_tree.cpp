#include "simhost/registry_tree.h"

#include <algorithm>

namespace simhost {

namespace {

wchar_t CapitalUnit(wchar_t unit) {
  const bool isPlain = unit >= L'a' && unit <= L'z';
  const bool isLatin = unit >= 0xE0 && unit <= 0xFE && unit != 0xF7;
  return isPlain || isLatin ? static_cast<wchar_t>(unit - 0x20) : unit;
}

} // namespace

std::wstring CapitalName(std::wstring_view name) {
  std::wstring capitals(name);
  std::ranges::transform(capitals, capitals.begin(), CapitalUnit);
  return capitals;
}

std::vector<std::wstring_view> PathComponents(std::wstring_view path) {
  std::vector<std::wstring_view> components;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(L'\\'), path.size());
    if (end != 0) {
      components.push_back(path.substr(0, end));
    }
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return components;
}

std::wstring JoinedPath(std::wstring_view path, std::wstring_view name) {
  std::wstring joined(path);
  joined += path.empty() ? L"" : L"\\";
  return joined += name;
}

std::shared_ptr<RegistryNode> RegistryNode::Find(std::wstring_view subkey) const {
  const auto found = subkeys.find(CapitalName(subkey));
  return found == subkeys.end() ? nullptr : found->second;
}

std::shared_ptr<RegistryNode> RegistryNode::FindOrMake(std::wstring_view subkey) {
  std::shared_ptr<RegistryNode> node = Find(subkey);
  if (node == nullptr) {
    node = std::make_shared<RegistryNode>();
    node->name = subkey;
    subkeys.insert({CapitalName(subkey), node});
  }
  return node;
}

void RegistryNode::Remove(std::wstring_view subkey) {
  const auto found = subkeys.find(CapitalName(subkey));
  if (found != subkeys.end()) {
    found->second->MarkDeleted();
    subkeys.erase(found);
  }
}

void RegistryNode::MarkDeleted() {
  isDeleted = true;
  for (const auto& [capitals, node] : subkeys) {
    node->MarkDeleted();
  }
}

std::shared_ptr<RegistryNode> RegistryNode::Copy() const {
  auto copy = std::make_shared<RegistryNode>();
  copy->name = name;
  copy->rights = rights;
  copy->values = values;
  for (const auto& [capitals, node] : subkeys) {
    copy->subkeys.insert({capitals, node->Copy()});
  }
  return copy;
}

} // namespace simhost
