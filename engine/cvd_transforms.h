// The matrices of the colour vision deficiency modes: five published simulations, and the
// corrections derived from them. They act on column vectors of screen values.
#pragma once

#include "spectral/simulation_matrix.h"

namespace tintora {

// The variation of normal vision is protan vision at the severity divided by this.
inline constexpr double normalVariationDivisor = 5.0;

// Computes the simulation matrix of a type and severity (0..1), keeps it as the model context's
// uninvertedMatrix and makes of it what is shown: its daltonization, its inverse or itself;
// daltonize wins when both are asked for. Stores the inputs and the result in the context and
// returns the result. An unknown algorithm starts from the previous result; a singular matrix that
// should be inverted is shown as it is.
Matrix3x3 computeSimulationMatrix(CvdType modelCvdType, double modelSeverity,
                                  SimulationAlgorithm Option, bool Inversion, bool Daltonize);

// Returns the simulation matrix alone, without touching the program's model context. Type and
// algorithm are known ones; the identity for Brettel 1997, which is no single matrix
// (colour_simulation.h).
Matrix3x3 simulationMatrix(CvdType type, double severity, SimulationAlgorithm algorithm);

// Returns the correction for a viewer with the simulated deficiency. It moves the colour
// differences that the viewer loses into channels where the viewer can see them.
Matrix3x3 daltonize(const Matrix3x3& simulation);

}  // namespace tintora
