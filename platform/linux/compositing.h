// Finds out whether a compositing manager or the X server alone paints the screen.
#pragma once

#include <xcb/xcb.h>

namespace tintora::platform {

// Finds out whether there is a compositing manager, and follows when one comes or goes.
void followCompositing();

// Handles an event of the server. Returns true if a compositing manager has come or gone.
bool followCompositing(const xcb_generic_event_t& event);

// Returns true while a compositing manager composes the screen. Windows are translucent only then.
bool isComposited();

// Returns true if the window manager composes the screen itself. Then only it knows how much of its
// frames it paints.
bool isComposedByWindowManager();

// Returns the window on which a compositing manager draws the screen, or XCB_NONE. It is above all
// others, but covers nothing of the picture.
xcb_window_t overlayWindow();

}  // namespace tintora::platform
