// Text beside what is drawn in space.
#pragma once

#include <string>

#include "colour_space/matrix4x4.h"
#include "platform/geometry.h"

namespace tintora {

// The colour of the labels and of the spectral locus.
inline constexpr platform::PackedColour lightGrey = 0xFFB4B4B4;

// Returns the pixel at which the device's camera sees a point of the world, moved to the right by
// an offset in pixels. Fractions are cut off.
platform::Point seenAt(const Vector3& point, int offsetX);

// Draws text with its top left corner at a place, in the colour and font of the labels. What does
// not fit into 100 by 50 pixels is clipped.
void drawLabel(const platform::Point& place, const std::string& text);

}  // namespace tintora
