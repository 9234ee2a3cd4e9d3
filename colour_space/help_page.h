// The page of instructions in the colour space window.
#pragma once

namespace tintora {

// Draws the page over what is already in the window.
void drawHelpPage();

}  // namespace tintora
