// The xy chromaticity diagram of the CIE 1931 observer, with the display's gamut as seen through
// the transform.
#pragma once

#include "spectral/matrix3x3.h"

namespace tintora {

// Builds the spectral locus, the triangle of the display's primaries, the gamut and its outline,
// all untransformed.
void buildChromaticity();

// Moves the gamut and its outline to where the matrix takes their colours. The matrix acts on
// components from 0 to 255. A colour that becomes black has no chromaticity, so its vertex stays
// where it was.
void refreshGamut(const Matrix3x3& matrix);

// Draws the wavelengths beside the locus.
void drawWavelengthLabels();

}  // namespace tintora
