// What stands out from a plain ground in a picture: where it is, and how alike two such are.
#pragma once

#include "picture.h"

namespace tintora::windows_test {

// The ground of the views.
constexpr Colour background{80, 100, 120};

struct Ink {
  Bounds bounds;        // all 0 where there is none
  double amount = 0.0;  // pixels, each as much as it differs from the ground
  double x = 0.0;       // of its middle
  double y = 0.0;
};

Ink inkOf(const Picture& picture, const Bounds& part);
Ink inkOf(const Picture& picture);

// How far the ink of one picture is to be moved to lie best on that of another of the same size,
// and how well it lies there: 1 for ink of the same shape, 0 for ink that never meets.
struct Likeness {
  int x = 0;
  int y = 0;
  double correlation = 0.0;
};

Likeness likenessOf(const Picture& picture, const Picture& other);

Picture part(const Picture& picture, const Bounds& bounds);

}  // namespace tintora::windows_test
