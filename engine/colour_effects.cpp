#include "engine/colour_effects.h"

#include <cstddef>

namespace tintora {

namespace {

// The weights of red, green and blue in a grey: NTSC luma as published, to four places. They sum to
// 0.9999 and are not corrected.
constexpr std::array<double, 3> greyWeights{0.2989, 0.587, 0.114};

ColourEffect diagonalEffect(double red, double green, double blue, double equalOffset = 0.0) {
  return {{red, 0.0, 0.0, 0.0, green, 0.0, 0.0, 0.0, blue},
          {equalOffset, equalOffset, equalOffset}};
}

ColourEffect mixChannels(std::size_t first, std::size_t second, double strength) {
  ColourEffect effect;
  effect.matrix[4 * first] = effect.matrix[4 * second] = 1.0 - strength;
  effect.matrix[3 * first + second] = effect.matrix[3 * second + first] = strength;
  return effect;
}

}  // namespace

void chooseColourFilter(TransformSettings& settings, const ColourFilter& filter) {
  settings.Filter = filter.command;
  settings.filterName = filter.name;
  settings.filterRed = filter.red;
  settings.filterGreen = filter.green;
  settings.filterBlue = filter.blue;
}

ColourEffect greyscaleEffect() {
  return saturationEffect(0.0);
}

ColourEffect invertEffect() {
  return diagonalEffect(-1.0, -1.0, -1.0, 1.0);
}

ColourEffect brightnessEffect(double brightness) {
  return diagonalEffect(1.0, 1.0, 1.0, brightness);
}

ColourEffect contrastEffect(double contrast) {
  return diagonalEffect(contrast, contrast, contrast, (1.0 - contrast) * 0.5);
}

ColourEffect saturationEffect(double saturation) {
  ColourEffect effect;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const double own = row == column ? saturation : 0.0;
      effect.matrix[3 * row + column] = (1.0 - saturation) * greyWeights[column] + own;
    }
  }
  return effect;
}

ColourEffect filterEffect(const std::array<double, 3>& passed, double strength) {
  const auto factor = [strength](double pass) { return pass + (1.0 - pass) * (1.0 - strength); };
  return diagonalEffect(factor(passed[0]), factor(passed[1]), factor(passed[2]));
}

ColourEffect circadianEffect(double brightness) {
  return diagonalEffect(0.1 + 0.9 * brightness, 0.065 + 0.585 * brightness, 0.0);
}

ColourEffect swapEffect(ColourSwap swap, double strength) {
  switch (swap) {
    case ColourSwap::RedBlue:
      return mixChannels(0, 2, strength);
    case ColourSwap::RedGreen:
      return mixChannels(0, 1, strength);
    case ColourSwap::GreenBlue:
      return mixChannels(1, 2, strength);
    case ColourSwap::RedBlueInFull:
      return mixChannels(0, 2, 1.0);
  }
  return {};
}

}  // namespace tintora
