// Finds what stands out from a plain background in a picture, and compares two such finds.
#pragma once

#include "picture.h"

namespace tintora::windows_test {

// The background of the views.
constexpr Colour background{80, 100, 120};

struct Ink {
  Bounds bounds;        // all 0 if there is none
  double amount = 0.0;  // in pixels, weighted by their difference from the background
  double x = 0.0;       // of the weighted centre
  double y = 0.0;
};

Ink inkOf(const Picture& picture, const Bounds& part);
Ink inkOf(const Picture& picture);

// The offset by which the ink of one picture best matches that of another of the same size, and the
// correlation there: 1 for ink of the same shape, 0 for ink that never meets.
struct Likeness {
  int x = 0;
  int y = 0;
  double correlation = 0.0;
};

Likeness likenessOf(const Picture& picture, const Picture& other);

Picture part(const Picture& picture, const Bounds& bounds);

}  // namespace tintora::windows_test
