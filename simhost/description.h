#pragma once

#include "simhost/json.h"

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Reading the host's description: typed access to JSON that refuses what is wrong with the path of the key.

namespace simhost {

/// A description that is refused; `what()` is "/path/of/the/key: found X, expected Y".
class DescriptionError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A word of the description and the code that it stands for.
struct CodeName {
  std::string_view word;
  std::uint64_t code;
};

class Members;

/// One place of the description: a value and its path, or the path of a key that was not given ("absent").
///
/// Each reader throws DescriptionError for a value of another kind or outside the range. The readers with a fallback
/// give it for an absent key; those without refuse an absent key as missing. A JSON null is a value, never "absent".
///
///   std::uint8_t id = members["id"].Unsigned<std::uint8_t>(0, 255, 0);
///   std::wstring name = members["name"].Text(59, L"Array");
///   std::uint8_t state = members["state"].Code<std::uint8_t>(kLunStates, 255, 0);
///   for (const Node& lun : members["luns"].Elements(1000)) { ReadMembers(lun, [&](Members& keys) { ... }); }
class Node {
public:
  /// An absent place.
  explicit Node(std::string path) : m_path(std::move(path)) {}
  Node(const Json& value, std::string path) : m_value(&value), m_path(std::move(path)) {}

  bool IsAbsent() const { return m_value == nullptr; }
  bool IsNull() const { return m_value != nullptr && m_value->IsNull(); }
  /// Slash-separated keys and indexes from the top, for example "/dsms/0/arrays/1/id"; empty for the top.
  const std::string& Path() const { return m_path; }
  /// The value as it stands; none for an absent place.
  const Json* Value() const { return m_value; }

  /// An integer from `least` to `most`: a JSON integer or a text "0x..." of hexadecimal digits.
  std::uint64_t UnsignedNumber(std::uint64_t least, std::uint64_t most) const;
  std::int64_t SignedNumber(std::int64_t least, std::int64_t most) const;
  template <class T>
  T Unsigned(std::uint64_t least, std::uint64_t most) const {
    return static_cast<T>(UnsignedNumber(least, most));
  }
  template <class T>
  T Unsigned(std::uint64_t least, std::uint64_t most, T fallback) const {
    return IsAbsent() ? fallback : Unsigned<T>(least, most);
  }

  bool Flag() const;
  bool Flag(bool fallback) const { return IsAbsent() ? fallback : Flag(); }

  double Real() const;

  /// UTF-16 units, at most `most` of them: a JSON text, or {"units": [numbers from 0 to 65535]} for units that no JSON
  /// text can hold (lone surrogates).
  std::wstring Text(std::size_t most) const;
  std::wstring Text(std::size_t most, std::wstring_view fallback) const;
  /// The bytes of a JSON text, at most `most` of them, as given (UTF-8).
  std::string NarrowText(std::size_t most) const;
  std::string NarrowText(std::size_t most, std::string_view fallback) const;

  /// Bytes, at most `most`: a text of hexadecimal digit pairs or an array of numbers from 0 to 255.
  std::vector<std::uint8_t> Bytes(std::size_t most) const;

  /// A code: one of the words, or its number from 0 to `most`.
  std::uint64_t CodeNumber(std::span<const CodeName> words, std::uint64_t most) const;
  template <class T>
  T Code(std::span<const CodeName> words, std::uint64_t most) const {
    return static_cast<T>(CodeNumber(words, most));
  }
  template <class T>
  T Code(std::span<const CodeName> words, std::uint64_t most, T fallback) const {
    return IsAbsent() ? fallback : Code<T>(words, most);
  }

  /// The code of one of the words; numbers are refused.
  std::uint64_t WordNumber(std::span<const CodeName> words) const;
  template <class T>
  T Word(std::span<const CodeName> words) const {
    return static_cast<T>(WordNumber(words));
  }
  template <class T>
  T Word(std::span<const CodeName> words, T fallback) const {
    return IsAbsent() ? fallback : Word<T>(words);
  }

  /// The elements of an array, at most `most`; none for an absent key.
  std::vector<Node> Elements(std::size_t most) const;

  /// The members of an object whose keys are free names, at most `most`, in their order; none for an absent key.
  std::vector<std::pair<std::string_view, Node>> Entries(std::size_t most) const;

  /// Throws: "path: found <this value>, expected <expected>".
  [[noreturn]] void Refuse(std::string_view expected) const;

private:
  const Json* m_value = nullptr;
  std::string m_path;
};

/// The members of one object while it is read. Made by ReadMembers, which refuses the keys that nobody asked for.
class Members {
public:
  explicit Members(const Node& object);

  /// The member of that key, absent when it is not given. The key counts as known from now on.
  Node operator[](std::string_view key);

  bool Has(std::string_view key) const;

  /// The object's own place, for errors that concern the whole of it.
  const Node& Whole() const { return m_whole; }

  /// Throws DescriptionError naming the first key that was never asked for, and the keys that were.
  void RefuseUnknown() const;

private:
  Node m_whole;
  std::set<std::string, std::less<>> m_known;
};

/// Reads an object: calls `read(members)`, then refuses unknown keys. An absent place reads as an object without keys.
template <class Read>
void ReadMembers(const Node& object, Read read) {
  Members members(object);
  read(members);
  members.RefuseUnknown();
}

} // namespace simhost
