// The scale of screens with a high resolution. The program's sizes are pixels at 96 dpi; on a
// desktop with another resolution they are multiplied by its scale.
#pragma once

namespace tintora::platform {

// Returns the desktop's scale, 1 to 4: its resource "Xft.dpi" over 96, or 1 if it has none. The
// resource is read only once.
double desktopScale();

}  // namespace tintora::platform
