// The main window as a frame to see through: what the magnifier in it shows, and how it fits.
#pragma once

namespace tintora {

// Aims the magnifier at the part of the screen under the main window.
void updateSource();

// Fits the magnifier to the main window's client area, or to the screen when maximised.
void fitMagnifierToMainWindow();

// Requests that the magnifier is drawn anew.
void invalidateView();

}  // namespace tintora
