// From the settings in force to what is shown: matrix, title, check marks, views.
#pragma once

#include <cstdint>

namespace tintora {

// Applies the settings in force: check marks, matrix, title, display, views. Turns the transform
// on, unless it is a custom one and there are none.
void applyTransform();

// Shows the screen as it is and says so in the title; the settings stay.
void transformOffApply();

// Applies an entry of the custom transforms, the first if there is none of that index; does nothing
// at all if there are no entries. Leaves the index used in the settings and turns the transform on.
void applyCustomTransform(std::uint32_t index);

}  // namespace tintora
