// The nearest change of one colour that makes a pair of a palette distinct to all viewers.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "palette/appearance.h"

namespace tintora {

// A palette with what was found out about it.
struct CheckedPalette {
  std::span<const Rgb8> colours;
  std::span<const Appearance> looks;  // one for each colour
  std::span<const ColourTransform> viewers;
  CheckLimits limits;
};

// Returns the nearest change, by CIEDE2000, of one of the two colours that keeps the promises of
// Suggestion; none if there is none. It changes lightness alone if that is enough, with as much of
// the chroma as the display has at that lightness. Else it looks at a grid over every hue and
// chroma, unless the palette has more than 32 colours.
std::optional<Suggestion> suggestChange(const CheckedPalette& palette, std::size_t first,
                                        std::size_t second);

}  // namespace tintora
