// The small window that takes the mouse while the main window lets it through.
#pragma once

namespace tintora {

// Creates the control window, hidden. Returns false on failure.
bool createControlWindow();

// Shows the control window in the middle of the main window.
void showControlWindow();
void hideControlWindow();

// Paints the control window, and names it, while the main window is hit-transparent.
void paintControlWindow();

}  // namespace tintora
