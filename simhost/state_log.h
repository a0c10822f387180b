#pragma once

#include "simhost/json.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

// What happened to the machine since its description: keys with values, one JSON line per change, kept beside
// host.json.

namespace simhost {

class LockedStateFile;

/// A log that cannot be read or written; `what()` names the file and the line.
class StateError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// One change while it is put together, with the log locked: reads see what every run has written so far and what this
/// change has set already.
class StateChange {
public:
  virtual ~StateChange() = default;
  /// The value of the key, or none when nothing changed it.
  virtual const Json* Find(std::string_view key) const = 0;
  virtual void Set(std::string key, Json value) = 0;
  /// Forgets the key: the description's value counts again.
  virtual void Clear(std::string key) = 0;
};

/// Who follows the values whose keys begin with a prefix. Called with the log locked; what it throws is a
/// DescriptionError.
class StateWatcher {
public:
  virtual ~StateWatcher() = default;
  /// No key has a value any more.
  virtual void StartOver() = 0;
  /// A key has got this value; none: it was cleared.
  virtual void Take(std::string_view key, const Json* value) = 0;
};

/// The machine's changes; safe to use from several threads. Keys are free texts, by convention like
/// "dsms/0/debugLevel"; values are what the description would hold. Several runs may share one file: the lock is held
/// for one change at a time, and Refresh takes in what others have written.
class StateLog {
public:
  /// A log in a file that need not exist; an empty path keeps the changes in memory only. Throws StateError for a log
  /// that is corrupt before its last line.
  explicit StateLog(std::string path);

  /// The value of the key, or none when nothing changed it.
  std::optional<Json> Find(std::string_view key) const;
  /// The same for an integer or a flag, with what the description says.
  std::uint64_t Number(std::string_view key, std::uint64_t described) const;
  bool Flag(std::string_view key, bool described) const;

  /// Records one value.
  void Set(std::string key, Json value);
  /// Records what `change` sets as one line, read and written under one lock, for example counting something up.
  void Update(const std::function<void(StateChange&)>& change);

  /// Takes in what other runs have written, or that the file is gone.
  void Refresh();

  /// Tells one watcher, which outlives the log's last use, of the keys with a prefix: of their values now, and from now
  /// on of each change, whoever made it. Throws StateError.
  void Watch(std::string prefix, StateWatcher& watcher);

private:
  using Values = std::map<std::string, Json, std::less<>>;
  class Change;

  void StartOver(std::uint64_t fileId);
  void TakeIn(std::string_view text);
  void TakeInLine(std::string_view line);
  [[noreturn]] void RefuseLine(std::string_view reason) const;
  void TakeInFile();
  void Compact(LockedStateFile& file);
  void Tell(std::string_view key, const Json* value) const;

  mutable std::mutex m_lock;
  std::string m_path;
  Values m_values;
  std::uint64_t m_fileId = 0; ///< the file that the values come from; 0 for none
  std::uint64_t m_offset = 0; ///< bytes of it taken in, complete lines
  std::uint64_t m_lines = 0;  ///< lines taken in
  std::string m_watched;
  StateWatcher* m_watcher = nullptr;
};

/// The log is rewritten, a line per key, when it has more than this many lines and more than four times as many as
/// keys.
inline constexpr std::uint64_t kCompactionLines = 1000;

} // namespace simhost
