// The xy chromaticity diagram of the CIE 1931 observer, with the display's gamut as it looks
// through the transform.
#pragma once

#include "spectral/matrix3x3.h"

namespace tintora {

// Builds the spectral locus, the triangle of the display's primaries, and the gamut with its
// outline, untransformed.
void buildChromaticity();

// Moves the gamut and its outline to where the matrix takes their colours. A colour that becomes
// black has no chromaticity: its vertex stays where it was. The matrix acts on components of
// 0..255.
void refreshGamut(const Matrix3x3& matrix);

// Writes the wavelengths beside the locus.
void drawWavelengthLabels();

}  // namespace tintora
