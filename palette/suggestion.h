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

// Returns the smallest change of one of the two colours, by CIEDE2000, that makes a Suggestion;
// nothing if there is none. Changes lightness alone if that is enough, and keeps as much chroma as
// the display can show at that lightness. Otherwise searches every hue and chroma, unless the
// palette has more than 32 colours.
std::optional<Suggestion> suggestChange(const CheckedPalette& palette, std::size_t first,
                                        std::size_t second);

}  // namespace tintora
