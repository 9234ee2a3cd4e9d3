// Pictures in the test's memory, and colour effects on them.
#pragma once

#include <xcb/xproto.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "colour_effect.h"

namespace tintora::desktop_test {

using expected::ColourEffect;
using expected::identityEffect;

struct Area {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  int right() const { return x + width; }
  int bottom() const { return y + height; }
  bool contains(int px, int py) const {
    return px >= x && px < right() && py >= y && py < bottom();
  }
  friend bool operator==(const Area&, const Area&) = default;
};

void PrintTo(const Area& area, std::ostream* out);

Area common(const Area& a, const Area& b);

// Pixels as 0xAARRGGBB, row by row.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  std::uint32_t at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
  }
};

// Red, green and blue, 0 to 255.
using Colour = std::array<double, 3>;

Colour colourOf(std::uint32_t pixel);

Picture solid(int width, int height, std::uint32_t pixel);

// Returns a part of a picture, which lies within it.
Picture partOf(const Picture& picture, const Area& part);

// Replaces a part of a picture by the same part of another one.
void replacePart(Picture& picture, const Picture& other, const Area& part);

// Returns random colours; each seed gives another picture.
Picture noise(int width, int height, std::uint32_t seed);

// Returns a colour after the effect, not yet rounded.
Colour filtered(const Colour& colour, const ColourEffect& effect);

void savePicture(const Picture& picture, const std::string& path);

// Reads a PNG file; empty on failure.
Picture readPicture(const std::string& path);

}  // namespace tintora::desktop_test
