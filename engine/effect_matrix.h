// The one colour matrix that is applied to the screen.
#pragma once

#include <array>

namespace tintora {

struct ColourEffect;

// [input channel][output channel] in the order R, G, B, A; row 4 holds the offsets. A colour is the
// row vector (R, G, B, A, 1) with channels 0..1, and the shown colour is that vector times the
// matrix. The alpha row and column and [4][4] are always those of the identity.
using EffectMatrix = std::array<std::array<float, 5>, 5>;

inline constexpr EffectMatrix identityEffectMatrix{{
    {1.0F, 0.0F, 0.0F, 0.0F, 0.0F},
    {0.0F, 1.0F, 0.0F, 0.0F, 0.0F},
    {0.0F, 0.0F, 1.0F, 0.0F, 0.0F},
    {0.0F, 0.0F, 0.0F, 1.0F, 0.0F},
    {0.0F, 0.0F, 0.0F, 0.0F, 1.0F},
}};

// Returns the matrix of an effect; entries are rounded to floats.
EffectMatrix makeEffectMatrix(const ColourEffect& effect);

// The matrix in force.
extern EffectMatrix effectMatrix;

// Writes the nine colour entries and the three offsets of the matrix in force, and nothing else.
void storeColourEffect(const ColourEffect& effect);

}  // namespace tintora
