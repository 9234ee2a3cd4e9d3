// The single-byte text of the program: Windows code page 1252.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tintora {

// The code points of the bytes 0x80 to 0x9F; every other byte is the code point of its own number.
// Five bytes stand for nothing and keep their number. Source: the mapping of code page 1252 that
// the Unicode Consortium publishes.
inline constexpr std::array<char16_t, 32> windows1252Middle{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
inline constexpr std::size_t firstWindows1252Middle = 0x80;

// Returns the Unicode code point of a character.
constexpr char16_t toCodePoint(char character) {
  const auto byte = static_cast<std::uint8_t>(character);
  const std::size_t place = byte - firstWindows1252Middle;
  return place < windows1252Middle.size() ? windows1252Middle[place] : char16_t{byte};
}

// Returns the character of a Unicode code point, or nothing if the code page does not have it.
constexpr std::optional<char> fromCodePoint(char16_t codePoint) {
  for (std::size_t place = 0; place < windows1252Middle.size(); ++place) {
    if (windows1252Middle[place] == codePoint) {
      return static_cast<char>(firstWindows1252Middle + place);
    }
  }
  const bool isMiddle = codePoint - firstWindows1252Middle < windows1252Middle.size();
  if (codePoint > 0xFF || isMiddle) return std::nullopt;
  return static_cast<char>(codePoint);
}

}  // namespace tintora
