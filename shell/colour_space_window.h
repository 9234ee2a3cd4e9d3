// The colour space window: where it stands, whether it shows, and what it shows.
#pragma once

namespace tintora {

// Moves the colour space window beside the main window when docked, and passes its new size to the
// renderer when that has changed.
void layOutColourSpace();

// Shows the colour space window, beside the main window when docked.
void showColourSpace();
void hideColourSpace();

// Docks the colour space window to the main window's right edge, or sets it free.
void toggleDocking();

// Draws the view if the window is shown: it repeats the main window's title, and the colour space
// window's own title names the view.
void renderColourSpace();

}  // namespace tintora
