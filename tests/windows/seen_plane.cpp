#include "seen_plane.h"

#include <cmath>
#include <numbers>

namespace tintora::windows_test {

// The eye stands 5.5 before the plane, which is shrunk to 8/11, and sees 30 degrees from top to
// bottom.
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
