// Lines of text over a picture: each line becomes a texture of its coverage when it is first drawn,
// and is drawn from that in any colour.
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

// The font itself is sought when its first line is drawn: looking for one takes long.
struct TextFont {
  int height = 0;  // of a line, in pixels at 96 dpi
  bool outlinesOnly = false;
  std::optional<QFont> font{};
  std::unordered_map<std::string, TextImage> images{};
};

// Draws a line of text into a picture of some size.
void drawTextImage(OpenGl& gl, const Size& picture, TextFont& font, const Rect& area,
                   PackedColour colour, const std::string& text);

// Lets the textures of a font go.
void discardImages(TextFont& font);

}  // namespace tintora::platform
