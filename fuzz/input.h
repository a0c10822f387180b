#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace fuzzing {

/// A fuzzer's bytes, taken as choices from the front on. Behind the end all is zero.
class Input {
public:
  Input(const std::uint8_t* bytes, std::size_t size) : m_bytes(bytes, size) {}

  bool IsAtEnd() const { return m_bytes.empty(); }

  /// Little-endian, of `width` bytes, at most 8.
  std::uint64_t Number(std::size_t width = 1) {
    std::uint64_t number = 0;
    const auto bytes = Take(width);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      number |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return number;
  }

  /// From 0 to `count` - 1; `count` is at least 1.
  std::size_t Choice(std::size_t count) { return static_cast<std::size_t>(Number(2) % count); }

  template <class T, std::size_t N>
  const T& OneOf(const T (&choices)[N]) {
    return choices[Choice(N)];
  }
  template <class T>
  const T& OneOf(const std::vector<T>& choices) {
    return choices[Choice(choices.size())];
  }

  /// A length, then as many bytes as there still are of it.
  std::string Text(std::size_t most) {
    const auto bytes = Take(static_cast<std::size_t>(Number(2) % (most + 1)));
    return {bytes.begin(), bytes.end()};
  }

  /// The text with changes that the rest of the bytes choose: bytes replaced, put in, taken out, said twice.
  std::string Edited(std::string text) {
    for (int edits = 0; edits < 30 && !IsAtEnd(); ++edits) {
      const std::size_t place = Choice(text.size() + 1);
      const auto length = std::min(text.size() - place, static_cast<std::size_t>(Number()));
      switch (Choice(5)) {
      case 0:
        text.replace(place, std::min<std::size_t>(length, 1), 1, static_cast<char>(Number()));
        break;
      case 1:
        text.insert(place, Text(40));
        break;
      case 2:
        text.erase(place, length);
        break;
      case 3:
        text.insert(place, text.substr(place, length));
        break;
      default:
        text.resize(Choice(4) == 0 ? place : text.size());
        break;
      }
    }
    return text;
  }

private:
  std::span<const std::uint8_t> Take(std::size_t count) {
    const auto taken = m_bytes.first(std::min(count, m_bytes.size()));
    m_bytes = m_bytes.subspan(taken.size());
    return taken;
  }

  std::span<const std::uint8_t> m_bytes;
};

} // namespace fuzzing
