// Sizes on screens of high resolution. The program's sizes are in pixels of a screen with 96 to the
// inch; a desktop that is set to another resolution has them multiplied by a scale.
#pragma once

namespace tintora::platform {

// Returns the scale of the desktop, 1 to 4: its resource "Xft.dpi" over 96, or 1 if it has none.
// It is read once.
double desktopScale();

}  // namespace tintora::platform
