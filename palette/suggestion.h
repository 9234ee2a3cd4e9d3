// The nearest changes of one colour that make pairs of a palette distinct to all viewers.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "palette/appearance.h"

namespace tintora {

// A palette with what was found out about it.
struct CheckedPalette {
  std::span<const Rgb8> colours;
  std::span<const Appearance> looks;  // one for each colour
  std::span<const ColourTransform> viewers;
  CheckLimits limits;
};

// Places in the palette, first < second.
struct ColourPair {
  std::size_t first = 0, second = 0;
};

// Returns for each of the pairs the smallest change of one of its two colours, by CIEDE2000, that
// makes a Suggestion; nothing if there is none. Changes lightness alone if that is enough, and
// keeps as much chroma as the display can show at that lightness. Otherwise searches every hue and
// chroma, unless the palette has more than 32 colours.
std::vector<std::optional<Suggestion>> suggestChanges(const CheckedPalette& palette,
                                                      std::span<const ColourPair> pairs);

}  // namespace tintora
