// The main window as a frame to see through: what the magnifier shows, the window's forms, hit
// transparency, and the two windows beside it.
#pragma once

namespace tintora {

// Aims the magnifier at the part of the screen under the main window.
void updateSource();

// Fits the magnifier to the main window's client area, or to the screen when maximised.
void fitMagnifierToMainWindow();

// Has the magnifier drawn anew.
void invalidateView();

// Moves the colour space window beside the main window when docked, and tells the renderer where
// its size has changed.
void layOutColourSpace();

// Shows the colour space window, beside the main window when docked; or hides it.
void showColourSpace();
void hideColourSpace();

void toggleDocking();

// Shows or hides the main window's frame. A command takes the window as not maximised.
void toggleFrame();
void toggleFrameByCommand();

void toggleHitTransparency();

// Enters or leaves full screen. By key the window is hit-transparent from the first moment.
void toggleFullScreenByKey();
void toggleFullScreenByCommand();

// What closing the control window means: back to a window that takes the mouse, out of full screen.
void leaveByControlWindow();

// Paints the control window, and names it, while the main window is hit-transparent.
void paintControlWindow();

}  // namespace tintora
