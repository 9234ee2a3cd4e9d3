// The chromaticity diagram once more, in extended precision and from the published tables.
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

// The chromaticity of a wavelength, from the table of the colour-matching functions.
ReferencePoint referenceChromaticity(std::size_t nanometres);
// ... and where the diagram draws it.
ReferencePoint referencePlace(const ReferencePoint& chromaticity);

ExpectedVertices referenceLocus();
std::vector<ReferenceLabel> referenceLabels();

// The colours of the two parts of the gamut, on a scale of 0 to 255.
std::vector<ReferenceColour> referenceMeshColours();
std::vector<ReferenceColour> referenceEdgeColours();

// A colour of the display where the diagram draws it.
ExpectedVertex referenceVertex(const ReferenceColour& colour);
// ... and what a matrix makes of it, at full brightness.
ExpectedVertex referenceVertex(const ReferenceColour& colour, const Matrix3x3& matrix);

}  // namespace tintora
