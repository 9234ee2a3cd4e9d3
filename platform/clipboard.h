// Pictures of the screen on the clipboard.
#pragma once

#include "platform/window.h"

namespace tintora::platform {

// A picture held by the desktop.
struct Picture;

// Takes a picture of what the screen shows in a window's client area.
Picture* captureClientArea(Window* window);

// Puts a picture on the clipboard in the name of a window; false where that fails.
bool putOnClipboard(Window* owner, Picture* picture);

// Gives the picture back to the desktop; the clipboard keeps its own.
void deletePicture(Picture* picture);

}  // namespace tintora::platform
