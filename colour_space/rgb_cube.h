// The RGB colour space as a cube: a solid one that the transform deforms, in a frame that it does
// not.
#pragma once

#include "spectral/matrix3x3.h"

namespace tintora {

// Builds the solid cube and its frame, untransformed.
void buildCube();

// Moves the corners of the solid cube to where the matrix takes their colours, which it shows
// clamped. The matrix acts on components of 0..255. A corner that it would take to no finite place
// stays where it is.
void refreshCube(const Matrix3x3& matrix);

}  // namespace tintora
