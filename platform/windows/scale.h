// Sizes on high-resolution screens. The program's sizes are in pixels at 96 dpi and are multiplied
// by the monitor's scale.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Returns the scale of a window's monitor (1 at 96 dpi); for null, that of the primary monitor.
double scaleOf(HWND window);

}  // namespace tintora::platform
