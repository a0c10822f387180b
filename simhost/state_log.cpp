#include "simhost/state_log.h"

#include "simhost/description.h"
#include "simhost/state_file.h"

#include <vector>

namespace simhost {

class StateLog::Change : public StateChange {
public:
  explicit Change(const Values& before) : m_before(before) {}

  const Json* Find(std::string_view key) const override {
    const auto changed = m_changes.find(key);
    if (changed != m_changes.end()) {
      return changed->second ? &*changed->second : nullptr;
    }
    const auto found = m_before.find(key);
    return found == m_before.end() ? nullptr : &found->second;
  }
  void Set(std::string key, Json value) override { m_changes.insert_or_assign(std::move(key), std::move(value)); }
  void Clear(std::string key) override { m_changes.insert_or_assign(std::move(key), std::nullopt); }

  bool IsEmpty() const { return m_changes.empty(); }

  /// {"set":{key:value,...},"clear":[key,...]}, each part only when there is something in it.
  Json Line() const {
    Json::Object set;
    Json::Array clear;
    for (const auto& [key, value] : m_changes) {
      if (value) {
        set.emplace_back(key, *value);
      } else {
        clear.emplace_back(key);
      }
    }
    Json::Object line;
    if (!set.empty()) {
      line.emplace_back("set", std::move(set));
    }
    if (!clear.empty()) {
      line.emplace_back("clear", std::move(clear));
    }
    return line;
  }

private:
  const Values& m_before;
  std::map<std::string, std::optional<Json>, std::less<>> m_changes;
};

StateLog::StateLog(std::string path) : m_path(std::move(path)) {
  Refresh();
}

std::optional<Json> StateLog::Find(std::string_view key) const {
  const std::scoped_lock lock(m_lock);
  const auto found = m_values.find(key);
  return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

std::uint64_t StateLog::Number(std::string_view key, std::uint64_t described) const {
  const std::optional<Json> value = Find(key);
  const std::uint64_t* number = value ? value->IfUnsigned() : nullptr;
  return number == nullptr ? described : *number;
}

bool StateLog::Flag(std::string_view key, bool described) const {
  const std::optional<Json> value = Find(key);
  const bool* flag = value ? value->IfBoolean() : nullptr;
  return flag == nullptr ? described : *flag;
}

void StateLog::Set(std::string key, Json value) {
  Update([&](StateChange& change) { change.Set(std::move(key), std::move(value)); });
}

void StateLog::Update(const std::function<void(StateChange&)>& change) {
  const std::scoped_lock lock(m_lock);
  std::optional<LockedStateFile> file;
  if (!m_path.empty()) {
    file.emplace(m_path);
    TakeInFile();
  }
  Change changes(m_values);
  change(changes);
  if (changes.IsEmpty()) {
    return;
  }
  const std::string line = changes.Line().Write() + "\n";
  if (file) {
    file->WriteAt(m_offset, line);
  }
  TakeIn(line);
  if (file && m_lines > kCompactionLines && m_lines > 4 * m_values.size()) {
    Compact(*file);
  }
}

void StateLog::Refresh() {
  const std::scoped_lock lock(m_lock);
  if (!m_path.empty()) {
    TakeInFile();
  }
}

void StateLog::StartOver(std::uint64_t fileId) {
  const bool hadState = m_lines != 0;
  m_values.clear();
  m_fileId = fileId;
  m_offset = 0;
  m_lines = 0;
  // The first change makes the file: nothing is over then.
  if (hadState && m_watcher != nullptr) {
    m_watcher->StartOver();
  }
}

void StateLog::Watch(std::string prefix, StateWatcher& watcher) {
  const std::scoped_lock lock(m_lock);
  m_watched = std::move(prefix);
  m_watcher = &watcher;
  for (const auto& [key, value] : m_values) {
    Tell(key, &value);
  }
}

void StateLog::Tell(std::string_view key, const Json* value) const {
  if (m_watcher == nullptr || !key.starts_with(m_watched)) {
    return;
  }
  try {
    m_watcher->Take(key, value);
  } catch (const DescriptionError& error) {
    throw StateError(StateFileName(m_path) + ": " + error.what());
  }
}

void StateLog::TakeInFile() {
  const StateFileStatus status = StatusOfStateFile(m_path);
  if (status.id != m_fileId || status.size < m_offset) {
    StartOver(status.id);
  }
  if (status.size > m_offset) {
    TakeIn(ReadStateFile(m_path, m_offset));
  }
}

void StateLog::TakeIn(std::string_view text) {
  for (;;) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
      return;
    }
    try {
      TakeInLine(text.substr(0, end));
    } catch (const JsonError& error) {
      if (end + 1 == text.size()) {
        return;
      }
      RefuseLine(error.what());
    }
    m_offset += end + 1;
    ++m_lines;
    text.remove_prefix(end + 1);
  }
}

void StateLog::RefuseLine(std::string_view reason) const {
  // The reason speaks of the one line that it saw.
  constexpr std::string_view kOwnLine = "line 1, ";
  const bool hasColumn = reason.starts_with(kOwnLine);
  reason.remove_prefix(hasColumn ? kOwnLine.size() : 0);
  throw StateError(StateFileName(m_path) + ": line " + std::to_string(m_lines + 1) + (hasColumn ? ", " : ": ") +
                   std::string(reason));
}

void StateLog::TakeInLine(std::string_view line) {
  const Json change = ParseJson(line);
  const Json* set = change.Find("set");
  const Json* clear = change.Find("clear");
  if ((set == nullptr && clear == nullptr) || (set != nullptr && set->IfObject() == nullptr) ||
      (clear != nullptr && clear->IfArray() == nullptr)) {
    throw JsonError("no change of the machine's state");
  }
  if (set != nullptr) {
    for (const auto& [key, value] : *set->IfObject()) {
      m_values.insert_or_assign(key, value);
      Tell(key, &value);
    }
  }
  if (clear != nullptr) {
    for (const Json& key : *clear->IfArray()) {
      if (const std::string* text = key.IfText()) {
        m_values.erase(*text);
        Tell(*text, nullptr);
      }
    }
  }
}

void StateLog::Compact(LockedStateFile& file) {
  std::string text;
  std::uint64_t lines = 0;
  for (const auto& [key, value] : m_values) {
    text += Json(Json::Object{{"set", Json::Object{{key, value}}}}).Write() + "\n";
    ++lines;
  }
  file.ReplaceWith(text);
  m_fileId = StatusOfStateFile(m_path).id;
  m_offset = text.size();
  m_lines = lines;
}

} // namespace simhost
