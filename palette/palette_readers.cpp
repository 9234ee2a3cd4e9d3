#include "palette/palette_readers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "palette/colour_names.h"

namespace tintora {

namespace {

constexpr std::string_view blanks = " \t\r\n\f\v";
constexpr std::string_view gimpHeader = "GIMP Palette";

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view withoutByteOrderMark(std::string_view text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  return text.starts_with(mark) ? text.substr(mark.size()) : text;
}

// Cuts the first line off the text and returns it without its end.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
  const std::string_view line = text.substr(0, end);
  const bool twoCharacters = text.substr(end, 2) == "\r\n";
  text.remove_prefix(std::min(end + (twoCharacters ? 2 : 1), text.size()));
  return line;
}

std::optional<unsigned> hexDigit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10U;
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10U;
  return std::nullopt;
}

struct HexColour {
  Rgb8 rgb;
  bool opaque;
};

// Reads 3, 4, 6 or 8 hex digits.
std::optional<HexColour> parseHex(std::string_view digits) {
  const bool isShort = digits.size() == 3 || digits.size() == 4;
  if (!isShort && digits.size() != 6 && digits.size() != 8) return std::nullopt;
  std::array<unsigned, 4> channels{0, 0, 0, 255};
  const std::size_t width = isShort ? 1 : 2;
  for (std::size_t i = 0; i * width < digits.size(); ++i) {
    const auto high = hexDigit(digits[i * width]);
    const auto low = hexDigit(digits[i * width + width - 1]);
    if (!high || !low) return std::nullopt;
    channels[i] = *high * 16U + *low;
  }
  const auto [red, green, blue, alpha] = channels;
  return HexColour{{static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                    static_cast<std::uint8_t>(blue)},
                   alpha == 255};
}

[[noreturn]] void throwAtLine(std::size_t line, const std::string& reason) {
  throw PaletteError("line " + std::to_string(line) + ": " + reason);
}

// Takes a number of 0..255 off the front of the line.
std::uint8_t takeChannel(std::string_view& line, std::size_t number) {
  line = trim(line);
  std::uint8_t channel = 0;
  const char* const end = line.data() + line.size();
  const auto [rest, error] = std::from_chars(line.data(), end, channel);
  const bool ends = rest == end || blanks.find(*rest) != std::string_view::npos;
  if (error != std::errc() || !ends) {
    throwAtLine(number, "a colour begins with three numbers of 0 to 255");
  }
  line.remove_prefix(static_cast<std::size_t>(rest - line.data()));
  return channel;
}

struct Findings {
  PaletteBuilder palette;
  std::vector<std::string> leftOut;
};

void add(Findings& found, const PaletteColour& colour) {
  addColour(found.palette, colour);
  if (found.palette.colours.size() > mostPaletteColours) {
    throw PaletteError("it holds more than " + std::to_string(mostPaletteColours) + " colours");
  }
}

PaletteText finish(Findings found) {
  if (found.palette.colours.empty()) {
    throw PaletteError(found.leftOut.empty() ? "it holds no colour"
                                             : "it holds no colour that is opaque");
  }
  return {std::move(found.palette.colours), std::move(found.leftOut)};
}

bool isWordCharacter(char c) {
  return hexDigit(c) || (c >= 'g' && c <= 'z') || (c >= 'G' && c <= 'Z') || c == '_' || c == '-' ||
         static_cast<unsigned char>(c) >= 0x80U;
}

// Returns the variable of "--name: ...", "$name: ..." or "@name: ..." with its sign; else nothing.
std::string_view variableName(std::string_view declaration) {
  declaration = trim(declaration);
  if (!declaration.starts_with("--") && !declaration.starts_with('$') &&
      !declaration.starts_with('@')) {
    return {};
  }
  const std::size_t colon = declaration.find(':');
  if (colon == std::string_view::npos) return {};
  const std::string_view name = trim(declaration.substr(0, colon));
  return name.find_first_of(blanks) == std::string_view::npos ? name : std::string_view();
}

void findHexColours(std::string_view text, Findings& found) {
  const std::string name(variableName(text));
  for (std::size_t at = text.find('#'); at != std::string_view::npos; at = text.find('#', at + 1)) {
    // A fragment of an address or an entity of a web page.
    if (at > 0 && (isWordCharacter(text[at - 1]) || text[at - 1] == '&' || text[at - 1] == '/')) {
      continue;
    }
    std::size_t end = at + 1;
    while (end < text.size() && isWordCharacter(text[end])) ++end;
    const auto colour = parseHex(text.substr(at + 1, end - at - 1));
    if (!colour) continue;
    if (colour->opaque) {
      add(found, {colour->rgb, name});
    } else if (found.leftOut.size() < mostPaletteColours) {
      found.leftOut.emplace_back(text.substr(at, end - at));
    }
  }
}

// Blanks out what stands between the two marks, or to the end of the text without the second.
void blankOut(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
    const std::size_t found = text.find(to, at + from.size());
    const std::size_t end = found == std::string::npos ? text.size() : found + to.size();
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(at),
              text.begin() + static_cast<std::ptrdiff_t>(end), ' ');
    at = end;
  }
}

}  // namespace

std::optional<Rgb8> parseColour(std::string_view text) {
  if (!text.starts_with('#')) return namedColour(text);
  if (text.size() != 4 && text.size() != 7) return std::nullopt;
  const auto colour = parseHex(text.substr(1));
  return colour ? std::optional(colour->rgb) : std::nullopt;
}

PaletteText readPalette(std::string_view text) {
  text = withoutByteOrderMark(text);
  if (text.find('\0') != std::string_view::npos) throw PaletteError("this is no text file");
  if (text.starts_with(gimpHeader)) return readGimpPalette(text);
  if (trim(text).starts_with('[')) {
    // Other lists, and sections of settings files, begin with the same bracket.
    try {
      return readJsonPalette(text);
    } catch (const PaletteError&) {
      if (trim(text).ends_with(']')) throw;
    }
  }
  return readHexColours(text);
}

PaletteText readGimpPalette(std::string_view text) {
  Findings found;
  std::size_t number = 1;
  if (trim(takeLine(text)) != gimpHeader) throwAtLine(number, "\"GIMP Palette\" is expected");
  while (!text.empty()) {
    ++number;
    std::string_view line = trim(takeLine(text));
    const bool isHeading =
        line.starts_with("Name:") || line.starts_with("Columns:") || line.starts_with("Channels:");
    if (line.empty() || line.starts_with('#') || isHeading) continue;
    PaletteColour colour;
    colour.rgb.red = takeChannel(line, number);
    colour.rgb.green = takeChannel(line, number);
    colour.rgb.blue = takeChannel(line, number);
    colour.name = trim(line);
    add(found, colour);
  }
  return finish(std::move(found));
}

PaletteText readHexColours(std::string_view text) {
  std::string plain(text);
  blankOut(plain, "/*", "*/");
  Findings found;
  std::string_view rest = plain;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of("{};"), rest.size());
    // What stands before an opening brace is a selector.
    if (end == rest.size() || rest[end] != '{') findHexColours(rest.substr(0, end), found);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return finish(std::move(found));
}

}  // namespace tintora
