// How a colour looks to everybody concerned: what the palette check compares.
#pragma once

#include <span>
#include <vector>

#include "engine/colour_transform.h"
#include "palette/colour_difference.h"
#include "palette/palette_check.h"

namespace tintora {

// A colour as one viewer sees it.
struct Look {
  Lab lab;
  double luminance = 0.0;  // WCAG 2
};

struct Appearance {
  Look before;
  std::vector<Look> after;  // to each of the viewers
};

Appearance appearanceOf(Rgb8 colour, std::span<const ColourTransform> viewers);

Difference differenceOf(const Look& first, const Look& second);

// Compares the colours at two places of a palette by their looks.
CheckedPair comparePair(std::size_t first, std::size_t second, const Appearance& firstLook,
                        const Appearance& secondLook);

// Returns true if the pair is told apart and the viewer sees a difference below the limit.
bool isLost(double before, double after, const CheckLimits& limits);

}  // namespace tintora
