// Where a point of the unturned views is seen, worked out from the eye's place and field of view.
#pragma once

namespace tintora {

struct SeenPoint {
  double x = 0.0;  // in pixels from the left top corner, to the right and downwards
  double y = 0.0;
};

// The eye stands 5.5 in front of the plane, the scene is shrunk to 8/11 of its size, and the field
// of view is 30 degrees high. An odd size has its middle half a pixel to the left of and above the
// exact one.
SeenPoint seenInPlane(double x, double y, int width, int height);

// Whether a pixel is the place with its fractions cut off; where those are all but 0, either
// neighbour may be.
void expectPixel(int actual, double expected);

}  // namespace tintora
