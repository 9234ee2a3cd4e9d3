// What a view of the colour space window should show, pixel by pixel: coloured lines and triangles
// in space, projected in double precision from the eye's place and field of view.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "expected_effects.h"
#include "picture.h"

namespace tintora::desktop_test {

using expected::Weights;
inline constexpr Weights untransformed{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

// The surface that the views are drawn on.
inline constexpr std::uint32_t viewBackground = 0x506478;

struct SpacePoint {
  double x = 0;
  double y = 0;
  double z = 0;
  Colour colour{};
};

// A line of two points or a triangle of three.
struct Shape {
  std::vector<SpacePoint> points;
};
// What is drawn later hides what is as near.
using Shapes = std::vector<Shape>;

// Degrees by which the front of the cube is moved to the right and downwards, both at once, and
// pixels of a drag in degrees.
struct Turn {
  double right = 0;
  double down = 0;
  double clockwise = 0;
};
inline constexpr double degreesPerPixel = 0.25;
using Turns = std::vector<Turn>;

// The solid cube under a transform and its frame, turned by one drag after another.
Shapes cubeShapes(const Weights& weights = untransformed, const Turns& turns = {});
// The spectral locus, the triangle of the primaries and the gamut under a transform.
Shapes diagramShapes(const Weights& weights = untransformed);
// The sensitivities of the cones with their peaks at these wavelengths in nm.
Shapes curveShapes(double peakS, double peakM, double peakL);

struct Place {
  double x = 0;
  double y = 0;
};

// Where a point of an unturned view is seen in a picture of some size, in pixels whose middles are
// whole numbers.
Place seenAt(double x, double y, int width, int height);

// Whether all pixels outside some areas are what the shapes make of them, and all that should be
// seen of the lines is there.
testing::AssertionResult shows(const Picture& picture, const Shapes& shapes,
                               const std::vector<Area>& texts);

}  // namespace tintora::desktop_test
