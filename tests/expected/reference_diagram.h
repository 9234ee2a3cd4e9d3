// The chromaticity diagram, computed a second time from the published tables in extended precision.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "expected_vertex.h"
#include "spectral/matrix3x3.h"

namespace tintora {

struct ReferencePoint {
  long double x = 0.0L;
  long double y = 0.0L;
};

struct ReferenceLabel {
  std::string text;
  ReferencePoint place;
  bool rising = false;
};

using ReferenceColour = std::array<long double, 3>;

// Returns the chromaticity of a wavelength, from the table of the colour-matching functions.
ReferencePoint referenceChromaticity(std::size_t nanometres);
// Returns where the diagram draws a chromaticity.
ReferencePoint referencePlace(const ReferencePoint& point);

ExpectedVertices referenceLocus();
std::vector<ReferenceLabel> referenceLabels();

// Return the colours of the gamut and of its outline, from 0 to 255.
std::vector<ReferenceColour> referenceMeshColours();
std::vector<ReferenceColour> referenceEdgeColours();

// Returns the vertex of a display colour.
ExpectedVertex referenceVertex(const ReferenceColour& colour);
// Returns the vertex of a display colour transformed by a matrix, at full brightness.
ExpectedVertex referenceVertex(const ReferenceColour& colour, const Matrix3x3& matrix);

}  // namespace tintora
