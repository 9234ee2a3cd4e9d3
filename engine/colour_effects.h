// The plain colour effects. Each is one formula of a few settings. Channels are 0..1, matrices act
// on column vectors, and nothing is clamped.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "engine/transform_settings.h"
#include "spectral/matrix3x3.h"

namespace tintora {

// shown = matrix * screen + offset, channels in the order R, G, B.
struct ColourEffect {
  Matrix3x3 matrix = identity3x3;
  std::array<double, 3> offset{};
};

// A colour filter of the menu, with the channels it passes (1) and blocks (0).
struct ColourFilter {
  std::int32_t command;
  std::string_view name;
  double red, green, blue;
};

inline constexpr std::array<ColourFilter, 6> colourFilters{{
    {100, "Red", 1.0, 0.0, 0.0},
    {101, "Green", 0.0, 1.0, 0.0},
    {102, "Blue", 0.0, 0.0, 1.0},
    {103, "Yellow", 1.0, 1.0, 0.0},
    {104, "Magenta", 1.0, 0.0, 1.0},
    {105, "Cyan", 0.0, 1.0, 1.0},
}};

// The full-strength red filter (TransformMode::RedFilter). It has a command but no menu item.
inline constexpr ColourFilter fullRedFilter{106, "Red", 1.0, 0.0, 0.0};

// Puts the filter into the settings. The mode stays.
void chooseColourFilter(TransformSettings& settings, const ColourFilter& filter);

ColourEffect greyscaleEffect();
ColourEffect invertEffect();
ColourEffect brightnessEffect(double brightness);                                 // -1..1
ColourEffect contrastEffect(double contrast);                                     // 0 mid-grey .. 1
ColourEffect saturationEffect(double saturation);                                 // 0 grey .. 1
ColourEffect filterEffect(const std::array<double, 3>& passed, double strength);  // each 0..1
ColourEffect circadianEffect(double brightness);                                  // 0..1

// Exchanges two channels, or mixes them at strengths between 0 and 1. Expects a named ColourSwap.
ColourEffect swapEffect(ColourSwap swap, double strength);

}  // namespace tintora
