#include "projection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tintora {

SeenPoint seenInPlane(double x, double y, int width, int height) {
  const double halfHeight = 5.5 * std::tan(15.0 * std::numbers::pi / 180.0);
  const double pixelsPerUnit = height / 2.0 / halfHeight;
  constexpr double shrunk = 4.0 / 5.5;
  const int middleX = width / 2;
  const int middleY = height / 2;
  return {middleX + x * shrunk * pixelsPerUnit, middleY - y * shrunk * pixelsPerUnit};
}

void expectPixel(int actual, double expected) {
  constexpr double doubtful = 1e-3;
  EXPECT_GE(actual, std::trunc(expected - doubtful));
  EXPECT_LE(actual, std::trunc(expected + doubtful));
}

}  // namespace tintora
