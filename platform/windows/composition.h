// What the program asks of the desktop's composition of windows.
#pragma once

#include <windows.h>

namespace tintora::platform {

// Waits until what was drawn so far is on the screen.
void awaitComposition();

// Keeps the corners of a window square, where the desktop would round them and so cut them off.
void keepCornersSquare(HWND window);

}  // namespace tintora::platform
