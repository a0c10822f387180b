#pragma once

#include "platform/posix/machine.h"
#include "simhost/state_log.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

// The registry below HKEY_LOCAL_MACHINE: as it is described, with what has become of it since.

namespace simhost {

struct RegistryNode;

/// Most components of a path.
inline constexpr std::size_t kMaxKeyDepth = 512;

/// Safe to use from several threads. What changes goes through the state log and comes back from it, whoever changed
/// it.
///
/// A key that was changed is one value of the log, named "registry/" and the key's path: all its values, as the
/// description would hold them, or "deleted". A key that was created says so.
class Registry final : public StateWatcher {
public:
  explicit Registry(StateLog& state);

  /// The root as it is described, to be filled before Start.
  RegistryNode& Described() { return *m_described; }
  /// Takes in the state; keys are opened after it only. Throws StateError.
  void Start();

  /// The root; it and all that is opened from it keep `self` alive, which is this registry.
  static std::shared_ptr<platform::RegistryKey> OpenRoot(std::shared_ptr<Registry> self);

  /// All keys and values, a line each: "[path]", then its values as "name"=value.
  std::string Listing();

  void StartOver() override;
  void Take(std::string_view key, const Json* value) override;

private:
  class Key;
  /// Which key an operation is about.
  struct Place {
    std::shared_ptr<RegistryNode> root; ///< of the tree that the node is in
    std::shared_ptr<RegistryNode> node;
    std::wstring path; ///< as written
  };

  bool IsThere(Place& place) const;
  template <class Read>
  DWORD Reading(Place& place, Read read);
  template <class Change>
  DWORD Changing(Place& place, Change change);

  DWORD Open(Place& from, std::wstring_view path, Place& opened);
  DWORD Create(Place& from, std::wstring_view path, Place& opened, bool& isNew);
  DWORD WriteValue(Place& place, std::wstring_view name, platform::RegistryValue value);
  DWORD Delete(Place& place);
  void Record(StateChange& change, const std::wstring& path, Json value) const;

  StateLog& m_state;
  std::mutex m_lock; ///< taken after the state log's own
  std::shared_ptr<RegistryNode> m_described;
  std::shared_ptr<RegistryNode> m_root;
  std::map<std::wstring, std::string> m_stateKeys; ///< of the keys that were changed, by CapitalName of their paths
};

} // namespace simhost
