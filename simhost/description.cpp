#include "simhost/description.h"

#include "simhost/text.h"

#include <algorithm>
#include <charconv>

namespace simhost {

namespace {

constexpr std::size_t kShownBytes = 60;

std::string FoundText(const Json* value) {
  if (value == nullptr) {
    return "nothing";
  }
  if (value->IfObject() != nullptr) {
    return "an object";
  }
  if (const Json::Array* elements = value->IfArray()) {
    return "an array of " + std::to_string(elements->size());
  }
  std::string text = value->Write();
  if (text.size() > kShownBytes) {
    text.resize(kShownBytes);
    text = Utf8FromWide(WideFromUtf8(text)) + "...";
  }
  return text;
}

/// A JSON text without its quotes, so that no key can break the line that names it.
std::string PathKey(std::string_view key) {
  const std::string quoted = Json(std::string(key)).Write();
  return quoted.substr(1, quoted.size() - 2);
}

std::string RangeText(const std::string& least, const std::string& most) {
  return least == most ? "the integer " + least : "an integer from " + least + " to " + most;
}

/// The number of a text "0x..." of 1 to 16 hexadecimal digits.
std::optional<std::uint64_t> HexNumber(std::string_view text) {
  if (!text.starts_with("0x")) {
    return std::nullopt;
  }
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data() + 2, end, number, 16);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

std::string QuotedList(const std::vector<std::string>& words) {
  std::string list;
  for (const std::string& word : words) {
    list += (list.empty() ? "\"" : ", \"") + word + "\"";
  }
  return list;
}

std::string WordList(std::span<const CodeName> words) {
  std::vector<std::string> known;
  for (const CodeName& name : words) {
    known.emplace_back(name.word);
  }
  return QuotedList(known);
}

const CodeName* FindWord(std::span<const CodeName> words, const Json* value) {
  const std::string* text = value == nullptr ? nullptr : value->IfText();
  if (text == nullptr) {
    return nullptr;
  }
  const auto found = std::find_if(words.begin(), words.end(), [&](const CodeName& name) { return name.word == *text; });
  return found == words.end() ? nullptr : &*found;
}

} // namespace

void Node::Refuse(std::string_view expected) const {
  throw DescriptionError((m_path.empty() ? "/" : m_path) + ": found " + FoundText(m_value) + ", expected " +
                         std::string(expected));
}

std::uint64_t Node::UnsignedNumber(std::uint64_t least, std::uint64_t most) const {
  std::optional<std::uint64_t> number;
  if (m_value != nullptr) {
    if (const std::uint64_t* given = m_value->IfUnsigned()) {
      number = *given;
    } else if (const std::string* text = m_value->IfText()) {
      number = HexNumber(*text);
    }
  }
  if (!number || *number < least || *number > most) {
    Refuse(RangeText(std::to_string(least), std::to_string(most)));
  }
  return *number;
}

std::int64_t Node::SignedNumber(std::int64_t least, std::int64_t most) const {
  std::optional<std::int64_t> number;
  if (m_value != nullptr) {
    if (const std::int64_t* negative = m_value->IfSigned()) {
      number = *negative;
    } else if (const std::uint64_t* given = m_value->IfUnsigned(); given != nullptr && *given <= INT64_MAX) {
      number = static_cast<std::int64_t>(*given);
    }
  }
  if (!number || *number < least || *number > most) {
    Refuse(RangeText(std::to_string(least), std::to_string(most)));
  }
  return *number;
}

bool Node::Flag() const {
  const bool* flag = m_value == nullptr ? nullptr : m_value->IfBoolean();
  if (flag == nullptr) {
    Refuse("true or false");
  }
  return *flag;
}

double Node::Real() const {
  if (m_value != nullptr) {
    if (const double* real = m_value->IfReal()) {
      return *real;
    }
    if (const std::int64_t* negative = m_value->IfSigned()) {
      return static_cast<double>(*negative);
    }
    if (const std::uint64_t* number = m_value->IfUnsigned()) {
      return static_cast<double>(*number);
    }
  }
  Refuse("a number");
}

std::wstring Node::Text(std::size_t most) const {
  std::optional<std::wstring> units;
  if (m_value != nullptr) {
    if (const std::string* text = m_value->IfText()) {
      units = WideFromUtf8(*text);
    } else if (m_value->IfObject() != nullptr) {
      units.emplace();
      ReadMembers(*this, [&](Members& members) {
        for (const Node& unit : members["units"].Elements(most)) {
          *units += unit.Unsigned<wchar_t>(0, 0xFFFF);
        }
      });
    }
  }
  if (!units || units->size() > most) {
    Refuse("a text of at most " + std::to_string(most) + " UTF-16 units");
  }
  return *std::move(units);
}

std::wstring Node::Text(std::size_t most, std::wstring_view fallback) const {
  return IsAbsent() ? std::wstring(fallback) : Text(most);
}

std::string Node::NarrowText(std::size_t most) const {
  const std::string* text = m_value == nullptr ? nullptr : m_value->IfText();
  if (text == nullptr || text->size() > most) {
    Refuse("a text of at most " + std::to_string(most) + " bytes");
  }
  return *text;
}

std::string Node::NarrowText(std::size_t most, std::string_view fallback) const {
  return IsAbsent() ? std::string(fallback) : NarrowText(most);
}

std::vector<std::uint8_t> Node::Bytes(std::size_t most) const {
  std::optional<std::vector<std::uint8_t>> bytes;
  if (m_value != nullptr) {
    if (const std::string* text = m_value->IfText()) {
      bytes = BytesFromHex(*text);
    } else if (m_value->IfArray() != nullptr) {
      bytes.emplace();
      for (const Node& element : Elements(most)) {
        bytes->push_back(element.Unsigned<std::uint8_t>(0, 255));
      }
    }
  }
  if (!bytes || bytes->size() > most) {
    Refuse("at most " + std::to_string(most) + " bytes as hexadecimal digit pairs or numbers");
  }
  return *std::move(bytes);
}

std::uint64_t Node::CodeNumber(std::span<const CodeName> words, std::uint64_t most) const {
  if (const CodeName* name = FindWord(words, m_value)) {
    return name->code;
  }
  if (m_value != nullptr) {
    const std::uint64_t* given = m_value->IfUnsigned();
    const std::string* text = m_value->IfText();
    const std::optional<std::uint64_t> number =
        given != nullptr ? std::optional(*given) : (text != nullptr ? HexNumber(*text) : std::nullopt);
    if (number && *number <= most) {
      return *number;
    }
  }
  Refuse("one of " + WordList(words) + " or " + RangeText("0", std::to_string(most)));
}

std::uint64_t Node::WordNumber(std::span<const CodeName> words) const {
  if (const CodeName* name = FindWord(words, m_value)) {
    return name->code;
  }
  Refuse("one of " + WordList(words));
}

std::vector<Node> Node::Elements(std::size_t most) const {
  std::vector<Node> elements;
  if (IsAbsent()) {
    return elements;
  }
  const Json::Array* array = m_value->IfArray();
  if (array == nullptr || array->size() > most) {
    Refuse("an array of at most " + std::to_string(most) + " elements");
  }
  elements.reserve(array->size());
  for (std::size_t i = 0; i < array->size(); ++i) {
    elements.emplace_back((*array)[i], m_path + "/" + std::to_string(i));
  }
  return elements;
}

std::vector<std::pair<std::string_view, Node>> Node::Entries(std::size_t most) const {
  std::vector<std::pair<std::string_view, Node>> entries;
  if (IsAbsent()) {
    return entries;
  }
  const Json::Object* object = m_value->IfObject();
  if (object == nullptr || object->size() > most) {
    Refuse("an object of at most " + std::to_string(most) + " members");
  }
  entries.reserve(object->size());
  for (const auto& [name, value] : *object) {
    entries.emplace_back(name, Node(value, m_path + "/" + PathKey(name)));
  }
  return entries;
}

Members::Members(const Node& object) : m_whole(object) {
  if (!object.IsAbsent() && object.Value()->IfObject() == nullptr) {
    object.Refuse("an object");
  }
}

Node Members::operator[](std::string_view key) {
  m_known.emplace(key);
  const Json* value = m_whole.IsAbsent() ? nullptr : m_whole.Value()->Find(key);
  std::string path = m_whole.Path() + "/" + std::string(key);
  return value == nullptr ? Node(std::move(path)) : Node(*value, std::move(path));
}

bool Members::Has(std::string_view key) const {
  return !m_whole.IsAbsent() && m_whole.Value()->Find(key) != nullptr;
}

void Members::RefuseUnknown() const {
  if (m_whole.IsAbsent()) {
    return;
  }
  for (const auto& [key, value] : *m_whole.Value()->IfObject()) {
    if (!m_known.contains(key)) {
      throw DescriptionError(m_whole.Path() + "/" + PathKey(key) + ": found an unknown key, expected one of " +
                             QuotedList({m_known.begin(), m_known.end()}));
    }
  }
}

} // namespace simhost
