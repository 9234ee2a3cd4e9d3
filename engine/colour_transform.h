// A transform of single colours in double precision, on encoded values or in linear light.
#pragma once

#include <array>

#include "engine/colour_effects.h"
#include "engine/effect_matrix.h"
#include "engine/srgb.h"

namespace tintora {

// R, G, B as an sRGB display takes them, each 0..1.
using Colour = std::array<double, 3>;

// One colour effect, or two on the two sides of a plane through black. `division` is normal to the
// plane: where its scalar product with the R, G, B values is negative, the second effect applies,
// elsewhere the first. The values are encoded or linear as `light` says.
struct ColourTransform {
  Light light = Light::Encoded;
  std::array<ColourEffect, 2> effects{};
  std::array<double, 3> division{};
};

// Returns the transform that the effect matrix, whose entries are floats, makes in this light.
ColourTransform makeColourTransform(const EffectMatrix& matrix, Light light);

// Returns the shown colour of a displayed one, each channel clamped to 0..1. A channel that is not
// a number becomes 0.
Colour transformColour(const ColourTransform& transform, const Colour& colour);

}  // namespace tintora
