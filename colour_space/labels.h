// Text that stands beside what is drawn in space.
#pragma once

#include <string>

#include "colour_space/matrix4x4.h"
#include "platform/geometry.h"

namespace tintora {

// Of labels, and of the line they stand along.
inline constexpr platform::PackedColour lightGrey = 0xFFB4B4B4;

// The pixel, cut off to whole ones, on which the current camera sees a point of the world, moved to
// the right by an offset in pixels.
platform::Point seenAt(const Vector3& point, int offsetX);

// Draws text from its left top corner, in the colour and font of the labels; what does not fit into
// 100 x 50 pixels is cut off.
void drawLabel(const platform::Point& place, const std::string& text);

}  // namespace tintora
