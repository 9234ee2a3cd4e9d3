// Turns the settings in force into what is shown: matrix, title, check marks, views.
#pragma once

#include <cstdint>

namespace tintora {

// Applies the settings in force: sets check marks, matrix and title and refreshes the views. Turns
// the transform on, unless a custom one is chosen and none is loaded.
void applyTransform();

// Shows the screen unchanged and says so in the title. The settings stay as they are.
void transformOffApply();

// Applies the custom transform of this index, or the first if the index is too large. Stores the
// index used and turns the transform on. Does nothing if no custom transform is loaded.
void applyCustomTransform(std::uint32_t index);

}  // namespace tintora
