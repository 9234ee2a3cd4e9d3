// Colours with names.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/colour_transform.h"

namespace tintora {

// An sRGB colour as it is written down.
struct Rgb8 {
  std::uint8_t red = 0, green = 0, blue = 0;
  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 takes the comparison for a pointer.
  auto operator<=>(const Rgb8&) const = default;
};

struct PaletteColour {
  Rgb8 rgb;
  std::string name;  // as it stands in its file; may be empty
};

// Returns the channels as 0..1.
Colour toColour(Rgb8 rgb);

// Returns the colour with its channels clamped to 0..1 and rounded to 8 bits.
Rgb8 roundColour(const Colour& colour);

// Returns "#rrggbb" in lower case.
std::string hexText(Rgb8 rgb);

// A palette in the making: each colour once, in the order they came.
struct PaletteBuilder {
  std::vector<PaletteColour> colours;
  std::map<Rgb8, std::size_t> places;  // of the colours above
};

// Adds a colour. One that is there already keeps its first name, or takes this one if it had none.
void addColour(PaletteBuilder& palette, const PaletteColour& colour);

}  // namespace tintora
