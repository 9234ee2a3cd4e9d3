// The named colours of CSS Color Module Level 4.
#pragma once

#include <optional>
#include <string_view>

#include "palette/palette.h"

namespace tintora {

// Returns the colour of that name in any case; none if there is no such name. "transparent" and
// "currentcolor" are no colours.
std::optional<Rgb8> namedColour(std::string_view name);

}  // namespace tintora
