// A display colour by its components. They run from 0 to 255, but a transform may take them beyond.
#pragma once

#include "colour_space/scene_object.h"
#include "spectral/matrix3x3.h"

namespace tintora {

struct Components {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

// Returns matrix * (red, green, blue).
Components transformed(const Components& colour, const Matrix3x3& matrix);

// Returns true if every component is finite.
bool isFinite(const Components& colour);

// Returns the opaque colour of components from 0 to 255. Fractions are cut off.
PackedColour packed(const Components& colour);

}  // namespace tintora
