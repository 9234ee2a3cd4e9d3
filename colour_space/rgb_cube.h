// The RGB colour space as a solid cube, which the transform deforms, in a wire frame, which it does
// not.
#pragma once

#include "spectral/matrix3x3.h"

namespace tintora {

// Builds the solid cube and its wire frame, both untransformed.
void buildCube();

// Moves the corners of the solid cube to where the matrix takes their colours, and shows these
// colours clamped. The matrix acts on components from 0 to 255. A corner whose new place would not
// be finite stays where it is.
void refreshCube(const Matrix3x3& matrix);

}  // namespace tintora
