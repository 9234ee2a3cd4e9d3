#include "palette/palette.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace tintora {

namespace {

constexpr double whole = 255.0;

std::uint8_t roundChannel(double channel) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(channel, 0.0, 1.0) * whole));
}

}  // namespace

Colour toColour(Rgb8 rgb) {
  return {rgb.red / whole, rgb.green / whole, rgb.blue / whole};
}

Rgb8 roundColour(const Colour& colour) {
  return {roundChannel(colour[0]), roundChannel(colour[1]), roundChannel(colour[2])};
}

std::string hexText(Rgb8 rgb) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text = "#";
  for (const unsigned channel : {rgb.red, rgb.green, rgb.blue}) {
    text += digits[channel >> 4U];
    text += digits[channel & 15U];
  }
  return text;
}

void addColour(PaletteBuilder& palette, const PaletteColour& colour) {
  const auto [place, isNew] = palette.places.emplace(colour.rgb, palette.colours.size());
  if (isNew) {
    palette.colours.push_back(colour);
    return;
  }
  std::string& name = palette.colours[place->second].name;
  if (name.empty()) name = colour.name;
}

}  // namespace tintora
