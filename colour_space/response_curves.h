// The sensitivities of the three cones over wavelength.
#pragma once

#include "spectral/cone_model.h"

namespace tintora {

// Builds the curves of the normal observer that stay as they are, for reference.
void buildReferenceCurves();

// Builds the curves of the normal observer that the transform moves.
void buildLiveCurves();

// Moves the live curves to an observer's. The severity counts up to 1.
void refreshCurves(CvdType type, double severity);

// Writes the wavelengths along the bottom.
void drawCurveLabels();

}  // namespace tintora
