// The spectral sensitivities of the three cones.
#pragma once

#include "spectral/cone_model.h"

namespace tintora {

// Builds the reference curves, which stay those of the normal observer.
void buildReferenceCurves();

// Builds the live curves, which the transform moves, as those of the normal observer.
void buildLiveCurves();

// Moves the live curves to those of an observer with a deficiency. A severity above 1 counts as 1.
void refreshCurves(CvdType type, double severity);

// Draws the wavelengths along the bottom.
void drawCurveLabels();

}  // namespace tintora
