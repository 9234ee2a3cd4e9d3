// The settings that outlive the program.
#pragma once

#include <cstdint>

#include "engine/transform_settings.h"

namespace tintora {

// The selection as it is stored: the custom transforms by their indices, then the built-in modes,
// counted from the number of custom transforms.
std::uint32_t encodeSelection(const TransformSettings& settings, std::uint32_t customCount);

// Puts a stored selection into the settings: mode, customIndex and, for the full-strength red
// filter, the filter's colour. A value past the table leaves the mode.
void decodeSelection(TransformSettings& settings, std::uint32_t stored, std::uint32_t customCount);

// Reads the saved settings into the transform settings and the shell's state, and centres the main
// window's bounds on the screen. What is not stored stays as it is.
void loadSettings();

void saveSettings();

}  // namespace tintora
