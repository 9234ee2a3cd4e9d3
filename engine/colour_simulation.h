// How a colour looks to a viewer with a colour vision deficiency, by any of the algorithms.
#pragma once

#include "engine/colour_transform.h"
#include "spectral/simulation_matrix.h"

namespace tintora {

// A deficiency and how to simulate it.
struct ColourSimulation {
  CvdType type = CvdType::Deutan;
  double severity = 1.0;  // 0..1
  SimulationAlgorithm algorithm = SimulationAlgorithm::Judd1948;
  Light light = Light::Encoded;  // Brettel 1997 always works in linear light
};

// What is made of a simulation for the viewer.
enum class SimulationUse { Simulate, Daltonize, Invert };

// Returns the transform that shows the simulation, or what is made of it: the same steps as on the
// screen, in double precision and without touching the program's records. A simulation without an
// inverse is shown as it is.
ColourTransform makeSimulation(const ColourSimulation& simulation,
                               SimulationUse use = SimulationUse::Simulate);

}  // namespace tintora
