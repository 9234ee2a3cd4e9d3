#include "engine/colour_transform.h"

#include <cstddef>

namespace tintora {

namespace {

double dot(const double* a, const Colour& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// Clamps to 0..1, but not by std::clamp, which keeps NaN.
double clampToUnit(double value) {
  if (!(value > 0.0)) return 0.0;
  return value < 1.0 ? value : 1.0;
}

}  // namespace

ColourTransform makeColourTransform(const EffectMatrix& matrix, Light light) {
  ColourEffect effect;
  for (std::size_t output = 0; output < 3; ++output) {
    for (std::size_t input = 0; input < 3; ++input) {
      effect.matrix[3 * output + input] = matrix[input][output];
    }
    effect.offset[output] = matrix[4][output];
  }
  return {light, {effect, effect}, {}};
}

Colour transformColour(const ColourTransform& transform, const Colour& colour) {
  const bool linear = transform.light == Light::Linear;
  Colour values = colour;
  if (linear) {
    for (double& value : values) value = decodeSrgb(value);
  }
  const bool beyond = dot(transform.division.data(), values) < 0.0;
  const ColourEffect& effect = transform.effects[beyond ? 1 : 0];
  Colour shown;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    const double sum = dot(&effect.matrix[3 * channel], values) + effect.offset[channel];
    shown[channel] = clampToUnit(sum);
    if (linear) shown[channel] = clampToUnit(encodeSrgb(shown[channel]));
  }
  return shown;
}

}  // namespace tintora
