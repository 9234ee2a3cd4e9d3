// Sizes on screens of high resolution. The program's sizes are in pixels of a screen with 96 to the
// inch; on other screens they are multiplied by a scale.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Returns the scale of a window's monitor, or for null that of the primary one; 1 at 96 dpi.
double scaleOf(HWND window);

}  // namespace tintora::platform
