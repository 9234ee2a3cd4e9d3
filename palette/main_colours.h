// The few colours that a picture is made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "palette/palette.h"

namespace tintora {

struct MainColour {
  Rgb8 rgb;            // a colour of the picture itself
  double share = 0.0;  // of the pixels that it stands for, 0..1
};

// Finds the main colours among pixels of B, G, R, A bytes, by k-means in CIELAB: at most as many as
// asked for, the largest share first. A colour weighs by the square root of its pixels, so that
// thin lines count. Pixels that are mostly transparent do not count; without others the result is
// empty.
std::vector<MainColour> mainColours(std::span<const std::uint8_t> pixels, std::size_t most);

}  // namespace tintora
