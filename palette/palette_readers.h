// Palettes from text: a colour as it is typed, and files that hold colours.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "palette/palette.h"

namespace tintora {

// Why a text is no palette: one line, without the name of the file.
struct PaletteError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct PaletteText {
  std::vector<PaletteColour> colours;  // in the order of the text, each once
  std::vector<std::string> leftOut;    // translucent colours, as written: they have no one look
};

inline constexpr std::size_t mostPaletteColours = 1024;

// Reads "#rgb", "#rrggbb" or a CSS colour name, in any case.
std::optional<Rgb8> parseColour(std::string_view text);

// Reads a GIMP palette, a JSON array or a text with hex colours, told apart by how it begins.
// Throws PaletteError for a text of another kind, a malformed one, and one that holds no colour or
// more than mostPaletteColours.
PaletteText readPalette(std::string_view text);

// Reads a GIMP palette (.gpl): a first line "GIMP Palette", then lines of red, green and blue
// (0..255) and perhaps a name.
PaletteText readGimpPalette(std::string_view text);

// Reads a JSON array of colours: texts as parseColour reads them, [red, green, blue] of 0..255, or
// objects with a member "hex", "color", "colour" or "value" that is one of these, and perhaps a
// "name".
PaletteText readJsonPalette(std::string_view text);

// Finds "#rgb" and "#rrggbb" anywhere in a text; "#rgba" and "#rrggbbaa" where they are opaque. Of
// style sheets it reads the declarations, not the selectors and comments; there the variable that a
// colour is given to becomes its name.
PaletteText readHexColours(std::string_view text);

}  // namespace tintora
