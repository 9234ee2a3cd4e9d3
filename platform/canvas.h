// Paints into a window.
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

// The font of all painted text. A desktop without this face uses its own.
struct PaintFont {
  const char* face;
  int height;  // of a line, in pixels
};
inline constexpr PaintFont paintFont{"Microsoft Sans Serif", 16};

// Starts painting a window's client area.
Canvas* beginPainting(Window* window);

// Shows what was painted and releases the canvas.
void endPainting(Canvas* canvas);

// Fills the whole client area.
void fill(Canvas* canvas, Colour colour);

// Draws text in paintFont. The place is its top left corner.
void drawText(Canvas* canvas, const Point& place, Colour colour, const std::string& text);

}  // namespace tintora::platform
