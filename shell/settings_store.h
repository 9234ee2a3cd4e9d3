// The settings that outlive the program.
#pragma once

#include <cstdint>

#include "engine/transform_settings.h"

namespace tintora {

// Returns the selection as it is stored: a custom transform's index, or a built-in mode's number
// counted from the number of custom transforms.
std::uint32_t encodeSelection(const TransformSettings& settings, std::uint32_t customCount);

// Puts a stored selection into the settings: mode, customIndex and, for the full-strength red
// filter, the filter's colour. A value beyond the table leaves the mode unchanged.
void decodeSelection(TransformSettings& settings, std::uint32_t stored, std::uint32_t customCount);

// Reads the saved settings into the transform settings and the shell's state, and centres the main
// window's bounds on the screen. Settings that are not stored stay as they are.
void loadSettings();

void saveSettings();

}  // namespace tintora
