// Where points of the unturned views are seen, computed from the eye's place and field of view.
#pragma once

namespace tintora {

struct SeenPoint {
  double x = 0.0;  // in pixels from the top left corner, to the right and downwards
  double y = 0.0;
};

// Returns where a point is seen. The eye is 5.5 in front of the plane, the scene is shrunk to 8/11
// of its size, and the field of view is 30 degrees high. The middle of an odd size is half a pixel
// to the left of and above the exact one.
SeenPoint seenInPlane(double x, double y, int width, int height);

// Expects a pixel to be the place with its fraction cut off. If the place is almost a whole number,
// either neighbour will do.
void expectPixel(int actual, double expected);

}  // namespace tintora
