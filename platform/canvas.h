// Painting into a window that is being painted.
#pragma once

#include <cstdint>
#include <string>

#include "platform/geometry.h"
#include "platform/window.h"

namespace tintora::platform {

struct Canvas;

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  bool operator==(const Colour&) const = default;
};

// Begins to paint a window's client area.
Canvas* beginPainting(Window* window);

// Ends it; the canvas is gone then.
void endPainting(Canvas* canvas);

// Fills the whole client area.
void fill(Canvas* canvas, Colour colour);

// Text of 16 pixels height with its left top corner at a place.
void drawText(Canvas* canvas, const Point& place, Colour colour, const std::string& text);

}  // namespace tintora::platform
