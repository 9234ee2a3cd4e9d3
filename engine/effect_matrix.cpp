#include "engine/effect_matrix.h"

#include <cstddef>

#include "engine/colour_effects.h"

namespace tintora {

EffectMatrix effectMatrix = identityEffectMatrix;

namespace {

void writeColourEffect(EffectMatrix& matrix, const ColourEffect& effect) {
  for (std::size_t output = 0; output < 3; ++output) {
    for (std::size_t input = 0; input < 3; ++input) {
      matrix[input][output] = static_cast<float>(effect.matrix[3 * output + input]);
    }
    matrix[4][output] = static_cast<float>(effect.offset[output]);
  }
}

}  // namespace

EffectMatrix makeEffectMatrix(const ColourEffect& effect) {
  EffectMatrix matrix = identityEffectMatrix;
  writeColourEffect(matrix, effect);
  return matrix;
}

void storeColourEffect(const ColourEffect& effect) {
  writeColourEffect(effectMatrix, effect);
}

}  // namespace tintora
