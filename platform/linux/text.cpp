#include "platform/linux/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tintora::platform {

namespace {

// Bytes 0x80 to 0x9F; all others are the same in both. Five of them stand for nothing and keep
// their number. Source: the mapping of code page 1252 that the Unicode Consortium publishes.
constexpr std::array<char16_t, 32> middle{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr std::uint8_t firstMiddle = 0x80;

char16_t toUnicode(char character) {
  const auto byte = static_cast<std::uint8_t>(character);
  const unsigned int index = byte - unsigned{firstMiddle};
  return byte >= firstMiddle && index < middle.size() ? middle[index] : char16_t{byte};
}

char fromUnicode(char16_t character) {
  const auto found = std::ranges::find(middle, character);
  if (found != middle.end()) return static_cast<char>(firstMiddle + (found - middle.begin()));
  const bool isMiddle = character >= firstMiddle && character < firstMiddle + middle.size();
  return character > 0xFF || isMiddle ? '?' : static_cast<char>(character);
}

}  // namespace

QString toUnicode(std::string_view text) {
  QString result;
  for (const char character : text) result += QChar(toUnicode(character));
  return result;
}

std::string fromUnicode(const QString& text) {
  std::string result;
  for (const QChar character : text) result += fromUnicode(character.unicode());
  return result;
}

}  // namespace tintora::platform
