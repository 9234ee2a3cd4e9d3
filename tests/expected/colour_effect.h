// The 5x5 matrix of the Magnification API.
#pragma once

#include <array>

namespace tintora::expected {

// Five rows of five numbers. A colour is the row vector (red, green, blue, alpha, 1).
using ColourEffect = std::array<float, 25>;

constexpr ColourEffect identityEffect{1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1,
                                      0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1};

}  // namespace tintora::expected
