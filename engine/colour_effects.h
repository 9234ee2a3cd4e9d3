// The plain colour effects: each one formula of a few settings. Channels 0..1, matrices in the
// column-vector convention; nothing is clamped.
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

// A colour filter of the menu: the channels it passes (1) and blocks (0).
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

// The command of the full-strength red filter (TransformMode::RedFilter) and what it passes.
inline constexpr ColourFilter fullRedFilter{106, "Red", 1.0, 0.0, 0.0};

// Makes the filter the one in the settings; the mode stays.
void chooseColourFilter(TransformSettings& settings, const ColourFilter& filter);

ColourEffect greyscaleEffect();
ColourEffect invertEffect();
ColourEffect brightnessEffect(double brightness);                                 // -1..1
ColourEffect contrastEffect(double contrast);                                     // 0 mid-grey .. 1
ColourEffect saturationEffect(double saturation);                                 // 0 grey .. 1
ColourEffect filterEffect(const std::array<double, 3>& passed, double strength);  // each 0..1
ColourEffect circadianEffect(double brightness);                                  // 0..1

// Exchanges two channels, mixing them at strengths between 0 and 1. The swap is one of the four.
ColourEffect swapEffect(ColourSwap swap, double strength);

}  // namespace tintora
