// The forms of the main window: frame, hit transparency, full screen.
#pragma once

namespace tintora {

// Fits and aims the magnifier and lays out the colour space window after the main window's size has
// changed.
void followMainWindowSize();

// Fits the main window, in full screen, and the magnifier to a screen whose size has changed.
void fitToScreen();

// Shows or hides the main window's frame. A command takes the window as not maximised.
void toggleFrame();
void toggleFrameByCommand();

// Lets the mouse through the main window and shows the control window, or ends both.
void toggleHitTransparency();

// Enters or leaves full screen. By key the window is hit-transparent from the first moment.
void toggleFullScreenByKey();
void toggleFullScreenByCommand();

// Ends hit transparency, and full screen if the main window is maximised, because the control
// window was closed.
void leaveByControlWindow();

}  // namespace tintora
