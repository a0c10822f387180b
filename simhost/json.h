#pragma once

#include <concepts>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// JSON values as the description and the state log hold them.

namespace simhost {

/// Text that is no JSON, or JSON that the host does not take; `what()` says where (line and column) and why.
class JsonError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A JSON value: members keep their order, integers their 64 bits. Keys are unique, texts are valid UTF-8.
class Json {
public:
  using Array = std::vector<Json>;
  using Object = std::vector<std::pair<std::string, Json>>;

  Json() = default;
  Json(bool value) : m_value(value) {}
  /// A negative number is held signed, any other unsigned.
  template <std::integral T>
  requires(!std::same_as<T, bool>) Json(T value) {
    if constexpr (std::signed_integral<T>) {
      if (value < 0) {
        m_value = static_cast<std::int64_t>(value);
        return;
      }
    }
    m_value = static_cast<std::uint64_t>(value);
  }
  Json(double value) : m_value(value) {}
  Json(std::string value) : m_value(std::move(value)) {}
  Json(const char* value) : m_value(std::string(value)) {}
  Json(Array value) : m_value(std::move(value)) {}
  Json(Object value) : m_value(std::move(value)) {}

  bool IsNull() const { return std::holds_alternative<std::monostate>(m_value); }
  const bool* IfBoolean() const { return std::get_if<bool>(&m_value); }
  const std::int64_t* IfSigned() const { return std::get_if<std::int64_t>(&m_value); }
  const std::uint64_t* IfUnsigned() const { return std::get_if<std::uint64_t>(&m_value); }
  /// Numbers with a fraction or an exponent, and integers beyond 64 bits.
  const double* IfReal() const { return std::get_if<double>(&m_value); }
  const std::string* IfText() const { return std::get_if<std::string>(&m_value); }
  const Array* IfArray() const { return std::get_if<Array>(&m_value); }
  const Object* IfObject() const { return std::get_if<Object>(&m_value); }

  /// The member of that key, or none (also when this is no object).
  const Json* Find(std::string_view key) const;

  /// One line of JSON without blanks.
  std::string Write() const;

  bool operator==(const Json& other) const = default;

private:
  std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Array, Object> m_value;
};

/// Deepest nesting that ParseJson takes.
inline constexpr int kMaxJsonDepth = 64;

/// The value that `text` holds. Throws JsonError for a syntax error, invalid UTF-8, a key given twice in one object, a
/// number out of every range or nesting beyond kMaxJsonDepth; the text of the error begins with "line L, column C: ".
Json ParseJson(std::string_view text);

} // namespace simhost
