// Lines of text over a picture. Each line becomes a coverage texture when it is first drawn, and
// can then be drawn in any colour.
#pragma once

#include <QFont>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/graphics.h"
#include "platform/linux/open_gl.h"

namespace tintora::platform {

struct TextImage {
  GLuint texture = 0;
  Size size;
};

// The font itself is loaded when its first line is drawn, because finding it takes long.
struct TextFont {
  int height = 0;  // of a line, in pixels at 96 dpi
  bool outlinesOnly = false;
  std::optional<QFont> font{};
  std::unordered_map<std::string, TextImage> images{};
};

// Draws a line of text into a picture of this size.
void drawTextImage(OpenGl& gl, const Size& picture, TextFont& font, const Rect& area,
                   PackedColour colour, const std::string& text);

// Discards the textures of a font.
void discardImages(TextFont& font);

}  // namespace tintora::platform
