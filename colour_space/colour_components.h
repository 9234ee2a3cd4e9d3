// A colour of the display by its components, on a scale of 0 to 255 that a transform may leave.
#pragma once

#include "colour_space/scene_object.h"
#include "spectral/matrix3x3.h"

namespace tintora {

struct Components {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

// matrix * (red, green, blue)
Components transformed(const Components& colour, const Matrix3x3& matrix);

// Whether no component is an infinity or not a number.
bool isFinite(const Components& colour);

// The opaque colour of components within 0..255, whose fractions are cut off.
PackedColour packed(const Components& colour);

}  // namespace tintora
