// Keeps the windows' sizes in line with the resolutions of the monitors that they are on.
#pragma once

#include <windows.h>

#include "platform/geometry.h"

namespace tintora::platform {

// Records that the window's present size suits the resolution of its monitor.
void acceptSize(HWND window);

// From the first call to the second, the window keeps its size; then it is resized about its centre
// if it has come to another resolution. While a window is dragged, a new size could put it back on
// the monitor that it comes from, again and again.
void holdSize(HWND window);
void releaseSize(HWND window);

// Moves a window for the program. If it keeps its size and comes to another resolution, it is
// resized afterwards.
void placeWindow(HWND window, const Rect& bounds);

// Moves the window to the bounds that the desktop suggests for its new resolution, unless the size
// suits that already or has to wait.
void takeSuggestedBounds(HWND window, const Rect& suggested);

// Returns true while the user moves or sizes the window by its frame or drags it by its picture.
bool isBeingMoved(HWND window);

}  // namespace tintora::platform
