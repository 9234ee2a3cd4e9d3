// The device of the colour space window, and all that is built on it.
#pragma once

#include "platform/window.h"

namespace tintora {

// Creates the device, the fonts and the objects of all views for a window whose client area has
// this size in pixels, and points the camera; resetCamera puts it back in front of the scene.
void createDevice(platform::Window* window, int width, int height, bool resetCamera);

// Releases the device and all that was built on it; does nothing without a device.
void releaseDevice();

// Builds all of it again for another size, untransformed and with the camera left as it was turned.
// Does nothing below 10 pixels either way, or without a device.
void resizeDevice(int width, int height);

// Brings the objects into line with the matrix and the observer of the model.
void refreshTransformViews();

}  // namespace tintora
