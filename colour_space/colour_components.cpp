#include "colour_space/colour_components.h"

#include <cmath>

namespace tintora {

Components transformed(const Components& colour, const Matrix3x3& m) {
  const auto& [red, green, blue] = colour;
  return {m[0] * red + m[1] * green + m[2] * blue, m[3] * red + m[4] * green + m[5] * blue,
          m[6] * red + m[7] * green + m[8] * blue};
}

bool isFinite(const Components& colour) {
  return std::isfinite(colour.red) && std::isfinite(colour.green) && std::isfinite(colour.blue);
}

PackedColour packed(const Components& colour) {
  constexpr PackedColour opaque = 0xFF000000;
  return opaque | static_cast<PackedColour>(colour.red) << 16U |
         static_cast<PackedColour>(colour.green) << 8U | static_cast<PackedColour>(colour.blue);
}

}  // namespace tintora
