#include "seen_plane.h"

#include <cmath>
#include <numbers>

namespace tintora::windows_test {

// Projects a point of the plane. The plane is scaled by 8/11; the eye is 5.5 in front of it with a
// vertical field of view of 30 degrees.
SeenPoint seen(const Picture& picture, double x, double y) {
  const double halfHeight = 5.5 * std::tan(std::numbers::pi / 12.0);
  const double scale = picture.height / 2.0 / halfHeight * 4.0 / 5.5;
  return {static_cast<int>(std::lround(picture.width / 2.0 + x * scale)),
          static_cast<int>(std::lround(picture.height / 2.0 - y * scale))};
}

SeenPoint seenChromaticity(const Picture& picture, double x, double y) {
  return seen(picture, 4.0 * x - 1.4, 4.0 * y - 1.8);
}

}  // namespace tintora::windows_test
