#include "simhost/object_path.h"

#include "simhost/text.h"

#include <algorithm>

namespace simhost {

namespace {

bool IsNameUnit(wchar_t unit) {
  return (unit >= L'A' && unit <= L'Z') || (unit >= L'a' && unit <= L'z') || (unit >= L'0' && unit <= L'9') ||
         unit == L'_' || unit >= 0x80;
}

bool IsBlank(wchar_t unit) {
  return unit == L' ' || unit == L'\t' || unit == L'\r' || unit == L'\n';
}

/// Takes pieces off the front of a text.
class Scanner {
public:
  explicit Scanner(std::wstring_view text) : m_rest(text) {}

  bool AtEnd() const { return m_rest.empty(); }

  void SkipBlanks() {
    while (!m_rest.empty() && IsBlank(m_rest.front())) {
      m_rest.remove_prefix(1);
    }
  }

  bool Take(wchar_t unit) {
    if (m_rest.empty() || m_rest.front() != unit) {
      return false;
    }
    m_rest.remove_prefix(1);
    return true;
  }

  /// A name; empty when there is none.
  std::wstring TakeName() {
    const auto end = std::find_if_not(m_rest.begin(), m_rest.end(), IsNameUnit);
    std::wstring name(m_rest.begin(), end);
    m_rest.remove_prefix(name.size());
    return name;
  }

  /// A text in double or single quotes, in which a backslash takes the next unit as it is.
  std::optional<std::wstring> TakeQuoted() {
    if (m_rest.empty() || (m_rest.front() != L'"' && m_rest.front() != L'\'')) {
      return std::nullopt;
    }
    const wchar_t quote = m_rest.front();
    std::wstring text;
    for (std::size_t i = 1; i < m_rest.size(); ++i) {
      if (m_rest[i] == quote) {
        m_rest.remove_prefix(i + 1);
        return text;
      }
      i += m_rest[i] == L'\\' ? 1U : 0U;
      if (i < m_rest.size()) {
        text += m_rest[i];
      }
    }
    return std::nullopt;
  }

  /// A number or a word such as TRUE.
  std::wstring TakeBare() {
    std::wstring text;
    if (Take(L'-')) {
      text = L"-";
    }
    return text + TakeName();
  }

private:
  std::wstring_view m_rest;
};

/// The path without "\\server\namespace:" before it; none when what stands there is another namespace.
std::optional<std::wstring_view> WithoutNamespace(std::wstring_view text) {
  const std::size_t colon = text.find(L':');
  const std::size_t quote = text.find_first_of(L"\"'");
  if (colon == std::wstring_view::npos || quote < colon) {
    return text;
  }
  const std::wstring_view place = text.substr(0, colon);
  return IsServedNamespace(place) ? std::optional(text.substr(colon + 1)) : std::nullopt;
}

std::optional<ObjectPath::KeyValue> TakeKeyValue(Scanner& scanner, bool named) {
  ObjectPath::KeyValue key{};
  if (named) {
    key.name = scanner.TakeName();
    if (key.name.empty() || !scanner.Take(L'=')) {
      return std::nullopt;
    }
  }
  std::optional<std::wstring> text = scanner.TakeQuoted();
  key.isText = text.has_value();
  key.value = text ? *std::move(text) : scanner.TakeBare();
  return key.isText || !key.value.empty() ? std::optional(std::move(key)) : std::nullopt;
}

/// A key's value as it stands in a path without quotes; none for a value that no path can hold so.
std::optional<std::wstring> BareText(const CimValue& value) {
  if (const bool* flag = value.IfBoolean()) {
    return *flag ? L"TRUE" : L"FALSE";
  }
  if (const std::int64_t* number = value.IfSigned()) {
    return std::to_wstring(*number);
  }
  if (const std::uint64_t* number = value.IfUnsigned()) {
    return std::to_wstring(*number);
  }
  return std::nullopt;
}

bool MatchesKey(const ObjectPath::KeyValue& key, const CimValue& value) {
  if (const std::wstring* text = value.IfText()) {
    return key.isText && EqualNames(key.value, *text);
  }
  const std::optional<std::wstring> bare = BareText(value);
  return !key.isText && bare && EqualNames(key.value, *bare);
}

} // namespace

bool ObjectPath::Names(const CimObject& instance) const {
  const std::vector<PropertyDefinition>& properties = instance.Class()->properties;
  std::size_t matched = 0;
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (!properties[i].key) {
      continue;
    }
    const auto named = std::find_if(keys.begin(), keys.end(), [&](const KeyValue& key) {
      return key.name.empty() ? keys.size() == 1 : EqualNames(key.name, properties[i].name);
    });
    if (named == keys.end() || !MatchesKey(*named, instance.ValueAt(i))) {
      return false;
    }
    ++matched;
  }
  return matched != 0 && matched == keys.size();
}

std::optional<ObjectPath> ParseObjectPath(std::wstring_view text) {
  const std::optional<std::wstring_view> relative = WithoutNamespace(text);
  if (!relative) {
    return std::nullopt;
  }
  Scanner scanner(*relative);
  ObjectPath path;
  path.className = scanner.TakeName();
  if (path.className.empty()) {
    return std::nullopt;
  }
  if (scanner.AtEnd()) {
    return path;
  }
  const bool named = scanner.Take(L'.');
  if (!named && !scanner.Take(L'=')) {
    return std::nullopt;
  }
  do {
    std::optional<ObjectPath::KeyValue> key = TakeKeyValue(scanner, named);
    if (!key) {
      return std::nullopt;
    }
    path.keys.push_back(*std::move(key));
  } while (named && scanner.Take(L','));
  return scanner.AtEnd() ? std::optional(std::move(path)) : std::nullopt;
}

bool IsServedNamespace(std::wstring_view path) {
  std::wstring folded = FoldedName(path);
  std::replace(folded.begin(), folded.end(), L'/', L'\\');
  return folded == L"root\\wmi" || folded == L"\\\\.\\root\\wmi";
}

std::optional<std::wstring> ParseMetaClassQuery(std::wstring_view query) {
  Scanner scanner(query);
  const auto word = [&](std::wstring_view expected) {
    scanner.SkipBlanks();
    return EqualNames(scanner.TakeName(), expected);
  };
  const auto sign = [&](wchar_t expected) {
    scanner.SkipBlanks();
    return scanner.Take(expected);
  };
  if (!word(L"select") || !sign(L'*') || !word(L"from") || !word(L"meta_class") || !word(L"where") ||
      !word(L"__superclass") || !sign(L'=')) {
    return std::nullopt;
  }
  scanner.SkipBlanks();
  std::optional<std::wstring> superclass = scanner.TakeQuoted();
  scanner.SkipBlanks();
  return scanner.AtEnd() ? superclass : std::nullopt;
}

std::wstring QuotedPathText(std::wstring_view text) {
  std::wstring quoted = L"\"";
  for (const wchar_t unit : text) {
    if (unit == L'\\' || unit == L'"') {
      quoted += L'\\';
    }
    quoted += unit;
  }
  return quoted + L"\"";
}

std::optional<std::wstring> CimObject::RelativePath() const {
  std::wstring path = m_class->name;
  if (m_isDefinition) {
    return path;
  }
  wchar_t separator = L'.';
  for (std::size_t i = 0; i < m_slots.size(); ++i) {
    const PropertyDefinition& property = m_class->properties[i];
    if (!property.key) {
      continue;
    }
    const std::wstring* text = m_slots[i].value.IfText();
    const std::optional<std::wstring> bare = BareText(m_slots[i].value);
    if (text == nullptr && !bare) {
      return std::nullopt;
    }
    path += separator + property.name + L"=" + (text != nullptr ? QuotedPathText(*text) : *bare);
    separator = L',';
  }
  return separator == L',' ? std::optional(std::move(path)) : std::nullopt;
}

} // namespace simhost
