#include "engine/effect_matrix.h"

#include <cstddef>

#include "engine/colour_effects.h"

namespace tintora {

EffectMatrix effectMatrix = identityEffectMatrix;

void storeColourEffect(const ColourEffect& effect) {
  for (std::size_t output = 0; output < 3; ++output) {
    for (std::size_t input = 0; input < 3; ++input) {
      effectMatrix[input][output] = static_cast<float>(effect.matrix[3 * output + input]);
    }
    effectMatrix[4][output] = static_cast<float>(effect.offset[output]);
  }
}

}  // namespace tintora
