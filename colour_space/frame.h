// The frames of the colour space window.
#pragma once

namespace tintora {

// Draws one frame of the current view; does nothing without a device.
void renderFrame();

}  // namespace tintora
