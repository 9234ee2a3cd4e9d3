#include "cli/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "engine/windows_1252.h"

namespace tintora::cli {

namespace {

template <typename Number>
std::string shortestDecimal(Number value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return {digits.data(), end};
}

void appendUtf8(std::string& text, char32_t codePoint) {
  const auto byte = [&](char32_t value) { text.push_back(static_cast<char>(value)); };
  if (codePoint < 0x80) {
    byte(codePoint);
  } else if (codePoint < 0x800) {
    byte(0xC0 | codePoint >> 6);
    byte(0x80 | (codePoint & 0x3F));
  } else {
    byte(0xE0 | codePoint >> 12);
    byte(0x80 | (codePoint >> 6 & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  }
}

// Returns the length of the valid UTF-8 sequence at the front of the text; none if there is none.
std::optional<std::size_t> sequenceLength(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = at(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return std::nullopt;
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return std::nullopt;
  }
  // Longer than need be, a surrogate, or past the last code point.
  const bool invalid = (lead == 0xE0 && at(1) < 0xA0) || (lead == 0xED && at(1) > 0x9F) ||
                       (lead == 0xF0 && at(1) < 0x90) || (lead == 0xF4 && at(1) > 0x8F);
  if (invalid) return std::nullopt;
  return length;
}

// Returns the code point of a valid sequence.
char32_t codePointOf(std::string_view sequence) {
  const auto lead = static_cast<std::uint8_t>(sequence[0]);
  if (sequence.size() == 1) return lead;
  auto codePoint = static_cast<char32_t>(lead & (0x7F >> sequence.size()));
  for (const char c : sequence.substr(1)) {
    codePoint = codePoint << 6 | (static_cast<std::uint8_t>(c) & 0x3F);
  }
  return codePoint;
}

// Returns the most columns that a character may take: two from U+1100 on.
std::size_t mostColumnsOf(std::string_view sequence) {
  constexpr char32_t firstWide = 0x1100;
  return codePointOf(sequence) < firstWide ? 1 : 2;
}

bool isControl(std::string_view sequence) {
  const char32_t codePoint = codePointOf(sequence);
  return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const auto length = sequenceLength(text);
    if (!length) return false;
    text.remove_prefix(*length);
  }
  return true;
}

}  // namespace

std::string shortest(float value) {
  return shortestDecimal(value);
}

std::string shortest(double value) {
  return shortestDecimal(value);
}

std::string joined(const std::vector<std::string>& texts, std::string_view between) {
  std::string whole;
  for (const std::string& text : texts) {
    if (!whole.empty()) whole += between;
    whole += text;
  }
  return whole;
}

std::string toUtf8(std::string_view text) {
  if (isUtf8(text)) return std::string(text);
  std::string converted;
  for (const char c : text) appendUtf8(converted, toCodePoint(c));
  return converted;
}

std::string printable(std::string_view text) {
  std::string safe;
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text).value_or(0);
    const std::string_view sequence = text.substr(0, std::max<std::size_t>(length, 1));
    if (sequence == "\n") {
      safe += ' ';
    } else if (length == 0 || isControl(sequence)) {
      safe += '?';
    } else {
      safe += sequence;
    }
    text.remove_prefix(sequence.size());
  }
  return safe;
}

std::string escapeMarkup(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string leadingColumns(std::string_view text, std::size_t columns) {
  std::string leading;
  while (!text.empty()) {
    const std::string_view sequence = text.substr(0, sequenceLength(text).value_or(1));
    const std::size_t width = mostColumnsOf(sequence);
    if (width > columns) break;
    columns -= width;
    leading += sequence;
    text.remove_prefix(sequence.size());
  }
  return leading;
}

}  // namespace tintora::cli
