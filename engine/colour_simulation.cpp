#include "engine/colour_simulation.h"

#include <cstddef>

#include "engine/brettel_1997.h"
#include "engine/cvd_transforms.h"

namespace tintora {

namespace {

Matrix3x3 matrixForUse(const Matrix3x3& simulation, SimulationUse use) {
  switch (use) {
    case SimulationUse::Simulate:
      break;
    case SimulationUse::Daltonize:
      return daltonize(simulation);
    case SimulationUse::Invert: {
      const Inverse3x3 inverse = invert3x3(simulation);
      if (inverse.succeeded) return inverse.matrix;
      break;
    }
  }
  return simulation;
}

}  // namespace

ColourTransform makeSimulation(const ColourSimulation& simulation, SimulationUse use) {
  ColourTransform transform;
  if (simulation.algorithm == SimulationAlgorithm::Brettel1997) {
    // A projection along the missing cone's axis moves no colour across the division, so its
    // inverse has the same one.
    const HalfPlanes halfPlanes = simulateOnHalfPlanes(simulation.type, simulation.severity);
    transform.light = Light::Linear;
    transform.division = halfPlanes.division;
    for (std::size_t side = 0; side < 2; ++side) {
      transform.effects[side].matrix = matrixForUse(halfPlanes.projections[side], use);
    }
    return transform;
  }
  transform.light = simulation.light;
  transform.effects[0].matrix = matrixForUse(
      simulationMatrix(simulation.type, simulation.severity, simulation.algorithm), use);
  transform.effects[1] = transform.effects[0];
  return transform;
}

}  // namespace tintora
