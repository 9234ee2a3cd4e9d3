// Pictures of the screen on the clipboard.
#pragma once

#include "platform/window.h"

namespace tintora::platform {

// A picture held by the desktop.
struct Picture;

// Takes a picture of the main window's client area as it is shown.
Picture* captureClientArea(Window* window);

// Puts a picture on the clipboard, with a window as its owner. Returns false on failure.
bool putOnClipboard(Window* owner, Picture* picture);

// Releases a picture. The clipboard keeps a copy of its own.
void deletePicture(Picture* picture);

}  // namespace tintora::platform
