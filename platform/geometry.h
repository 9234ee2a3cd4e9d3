// Places and sizes in pixels; x to the right, y downwards.
#pragma once

#include <cmath>

namespace tintora::platform {

struct Point {
  int x = 0;
  int y = 0;
  bool operator==(const Point&) const = default;
};

struct Size {
  int width = 0;
  int height = 0;
  bool operator==(const Size&) const = default;
};

// Right and bottom are the first column and row outside the rectangle.
struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  bool operator==(const Rect&) const = default;

  int width() const { return right - left; }
  int height() const { return bottom - top; }
};

// Returns a length or a place multiplied by a scale, to the nearest pixel.
inline int scaled(int pixels, double scale) {
  return static_cast<int>(std::lround(pixels * scale));
}

// Returns a rectangle with all its coordinates multiplied by a scale.
inline Rect scaled(const Rect& rect, double scale) {
  return {scaled(rect.left, scale), scaled(rect.top, scale), scaled(rect.right, scale),
          scaled(rect.bottom, scale)};
}

}  // namespace tintora::platform
