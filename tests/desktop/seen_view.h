// What a view of the colour space window should show, pixel by pixel: coloured lines and triangles
// in space, projected in double precision.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "expected_effects.h"
#include "picture.h"

namespace tintora::desktop_test {

using expected::Weights;
inline constexpr Weights untransformed{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

// A view tested for one transform, which a test of another view may use too.
struct TransformRow {
  const char* name;
  int type;
  Weights (*weights)(double severity);
};
inline void PrintTo(const TransformRow& row, std::ostream* out) {
  *out << row.name;
}

// The background on which the views are drawn.
inline constexpr std::uint32_t viewBackground = 0x506478;

struct SpacePoint {
  double x = 0;
  double y = 0;
  double z = 0;
  Colour colour{};
};

// A line with two points or a triangle with three.
struct Shape {
  std::vector<SpacePoint> points;
};
// At equal depth, later shapes hide earlier ones.
using Shapes = std::vector<Shape>;

// A turn of the cube in degrees: its front moves to the right and downwards, both at once. turnOf()
// converts a drag in pixels.
struct Turn {
  double right = 0;
  double down = 0;
  double clockwise = 0;
};
inline constexpr double degreesPerPixel = 0.25;
using Turns = std::vector<Turn>;

// Returns the solid cube under a transform, and its frame, turned by one drag after another.
Shapes cubeShapes(const Weights& weights = untransformed, const Turns& turns = {});
// Returns the spectral locus, the triangle of the primaries and the gamut under a transform.
Shapes diagramShapes(const Weights& weights = untransformed);
// Returns the cones' sensitivities with their peaks at these wavelengths in nm.
Shapes curveShapes(double peakS, double peakM, double peakL);

struct Place {
  double x = 0;
  double y = 0;
};

// Returns where a point of an unturned view appears in a picture of this size, in pixels. Pixel
// centres are whole numbers.
Place seenAt(double x, double y, int width, int height);

// Succeeds if all pixels outside some areas are as the shapes make them, and all visible parts of
// lines are there.
testing::AssertionResult shows(const Picture& picture, const Shapes& shapes,
                               const std::vector<Area>& texts);

}  // namespace tintora::desktop_test
