// Brettel, Viénot & Mollon 1997, Computerized simulation of color appearance for dichromats,
// Journal of the Optical Society of America A 14, 2647-2655.
#pragma once

#include <array>

#include "spectral/cone_model.h"
#include "spectral/matrix3x3.h"

namespace tintora {

// A dichromat's colours lie on two half planes that meet at the neutral axis. Both matrices act on
// linear R, G, B; the second where the scalar product of R, G, B with `division` is negative.
struct HalfPlanes {
  std::array<Matrix3x3, 2> projections;
  std::array<double, 3> division;
};

// Returns the simulation on an sRGB display. A severity below 1 interpolates from the original
// colour, in linear light. The type is one of the three.
HalfPlanes simulateOnHalfPlanes(CvdType type, double severity);

}  // namespace tintora
