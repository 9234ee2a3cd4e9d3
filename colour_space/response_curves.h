// The sensitivities of the three cones over wavelength.
#pragma once

#include "spectral/cone_model.h"

namespace tintora {

// Builds the curves of the normal observer, to be moved by the transform or to stay for reference.
void buildCurves(bool live);

// Moves the live curves to an observer's. The severity counts up to 1.
void refreshCurves(CvdType type, double severity);

// Writes the wavelengths along the bottom.
void drawCurveLabels();

}  // namespace tintora
