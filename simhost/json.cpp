#include "simhost/json.h"

#include "simhost/text.h"

#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

namespace simhost {

namespace {

using Library = nlohmann::json;

/// "line L, column C: " of the byte that was read last.
std::string PlaceText(std::string_view text, std::size_t bytesRead) {
  std::size_t line = 1;
  std::size_t column = 0;
  for (std::size_t i = 0; i < bytesRead && i < text.size(); ++i) {
    ++column;
    if (text[i] == '\n') {
      ++line;
      column = 0;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

/// Walks the text for the library and tells how far it has read.
class CountingIterator {
public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* place, const char** furthest) : m_place(place), m_furthest(furthest) {}
  reference operator*() const { return *m_place; }
  CountingIterator& operator++() {
    ++m_place;
    *m_furthest = m_place;
    return *this;
  }
  CountingIterator operator++(int) {
    CountingIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const CountingIterator& other) const { return m_place == other.m_place; }

private:
  const char* m_place;
  const char** m_furthest;
};

/// Builds the value while the library reads the text, and refuses what the host does not take.
class Builder : public nlohmann::json_sax<Library> {
public:
  Builder(std::string_view text, const char* const* furthest) : m_text(text), m_furthest(furthest) {}

  Json TakeResult() { return std::move(m_result); }

  bool null() override { return Add(Json()); }
  bool boolean(bool value) override { return Add(Json(value)); }
  bool number_integer(number_integer_t value) override { return Add(Json(std::int64_t{value})); }
  bool number_unsigned(number_unsigned_t value) override { return Add(Json(std::uint64_t{value})); }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return Add(Json(value)); }
  bool string(string_t& value) override { return Add(Json(std::move(value))); }
  bool binary(binary_t& /*value*/) override { return false; }

  bool start_object(std::size_t /*count*/) override { return Open(false); }
  bool start_array(std::size_t /*count*/) override { return Open(true); }
  bool end_array() override { return Close(); }
  bool end_object() override { return Close(); }

  bool key(string_t& name) override {
    if (!m_open.back().keys.insert(name).second) {
      Refuse("the key \"" + name + "\" is given twice in one object");
    }
    m_open.back().key = std::move(name);
    return true;
  }

  bool parse_error(std::size_t position, const std::string& /*token*/, const Library::exception& error) override {
    std::string_view reason = error.what();
    for (const std::string_view before : {std::string_view("] "), std::string_view("column ")}) {
      const std::size_t place = reason.find(before);
      if (place != std::string_view::npos) {
        reason.remove_prefix(place + before.size());
      }
    }
    const std::size_t colon = reason.find_first_not_of("0123456789");
    if (colon != 0 && colon != std::string_view::npos && reason.substr(colon, 2) == ": ") {
      reason.remove_prefix(colon + 2);
    }
    throw JsonError(PlaceText(m_text, position) + Utf8FromWide(WideFromUtf8(reason)));
  }

private:
  /// A container that is being filled.
  struct Level {
    bool isArray;
    Json::Array elements;
    Json::Object members;
    std::string key;
    std::set<std::string> keys;
  };

  [[noreturn]] void Refuse(const std::string& reason) {
    throw JsonError(PlaceText(m_text, static_cast<std::size_t>(*m_furthest - m_text.data())) + reason);
  }

  bool Add(Json value) {
    if (m_open.empty()) {
      m_result = std::move(value);
    } else if (m_open.back().isArray) {
      m_open.back().elements.push_back(std::move(value));
    } else {
      m_open.back().members.emplace_back(std::move(m_open.back().key), std::move(value));
    }
    return true;
  }

  bool Open(bool isArray) {
    if (m_open.size() >= static_cast<std::size_t>(kMaxJsonDepth)) {
      Refuse("nested deeper than " + std::to_string(kMaxJsonDepth) + " levels");
    }
    m_open.push_back(Level{isArray, {}, {}, {}, {}});
    return true;
  }

  bool Close() {
    Level level = std::move(m_open.back());
    m_open.pop_back();
    return Add(level.isArray ? Json(std::move(level.elements)) : Json(std::move(level.members)));
  }

  std::string_view m_text;
  const char* const* m_furthest;
  std::vector<Level> m_open;
  Json m_result;
};

void WriteText(std::string& line, std::string_view text) {
  line += '"';
  for (const char c : Utf8FromWide(WideFromUtf8(text))) {
    if (c == '"' || c == '\\') {
      line += '\\';
      line += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      line += escape;
    } else {
      line += c;
    }
  }
  line += '"';
}

void WriteValue(std::string& line, const Json& value);

void WriteElements(std::string& line, const Json::Array& elements) {
  line += '[';
  for (std::size_t i = 0; i < elements.size(); ++i) {
    line += i == 0 ? "" : ",";
    WriteValue(line, elements[i]);
  }
  line += ']';
}

void WriteMembers(std::string& line, const Json::Object& members) {
  line += '{';
  for (std::size_t i = 0; i < members.size(); ++i) {
    line += i == 0 ? "" : ",";
    WriteText(line, members[i].first);
    line += ':';
    WriteValue(line, members[i].second);
  }
  line += '}';
}

void WriteReal(std::string& line, double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  line += text;
  if (std::string_view(text).find_first_of(".e") == std::string_view::npos) {
    line += ".0";
  }
}

void WriteValue(std::string& line, const Json& value) {
  if (const bool* flag = value.IfBoolean()) {
    line += *flag ? "true" : "false";
  } else if (const std::int64_t* negative = value.IfSigned()) {
    line += std::to_string(*negative);
  } else if (const std::uint64_t* number = value.IfUnsigned()) {
    line += std::to_string(*number);
  } else if (const double* real = value.IfReal()) {
    WriteReal(line, *real);
  } else if (const std::string* text = value.IfText()) {
    WriteText(line, *text);
  } else if (const Json::Array* elements = value.IfArray()) {
    WriteElements(line, *elements);
  } else if (const Json::Object* members = value.IfObject()) {
    WriteMembers(line, *members);
  } else {
    line += "null";
  }
}

} // namespace

const Json* Json::Find(std::string_view key) const {
  if (const Object* members = IfObject()) {
    for (const auto& [name, value] : *members) {
      if (name == key) {
        return &value;
      }
    }
  }
  return nullptr;
}

std::string Json::Write() const {
  std::string line;
  WriteValue(line, *this);
  return line;
}

Json ParseJson(std::string_view text) {
  const char* furthest = text.data();
  Builder builder(text, &furthest);
  const bool complete = Library::sax_parse(CountingIterator(text.data(), &furthest),
                                           CountingIterator(text.data() + text.size(), &furthest), &builder);
  if (!complete) {
    throw JsonError(PlaceText(text, text.size()) + "no JSON value");
  }
  return builder.TakeResult();
}

} // namespace simhost
