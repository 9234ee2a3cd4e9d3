// Requests to the desktop's window composition.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Waits until everything drawn so far is on the screen.
void awaitComposition();

// Keeps the corners of a window square; rounding by the desktop would cut off the view's.
void keepCornersSquare(HWND window);

}  // namespace tintora::platform
