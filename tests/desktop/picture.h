// Pictures in the test's own memory, and what a colour effect makes of them.
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

// Pixels 0xAARRGGBB, row by row.
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

// All colours next to each other without any order; another picture for each seed.
Picture noise(int width, int height, std::uint32_t seed);

// What the effect makes of a colour, not yet rounded.
Colour filtered(const Colour& colour, const ColourEffect& effect);

void savePicture(const Picture& picture, const std::string& path);

// Of a PNG file; empty where it cannot be read.
Picture readPicture(const std::string& path);

}  // namespace tintora::desktop_test
