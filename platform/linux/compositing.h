// Whether the screen is composed by a compositing manager, or painted by the X server alone.
#pragma once

#include <xcb/xcb.h>

namespace tintora::platform {

// Asks whether there is a compositing manager, and has the server tell when one comes or goes.
void followCompositing();

// Takes in an event of the server; returns true if a compositing manager has come or gone.
bool followCompositing(const xcb_generic_event_t& event);

// Returns true while a compositing manager composes the screen. Only then are windows translucent.
bool isComposited();

// Returns true if the window manager composes the screen itself. Then it alone knows what it paints
// of its frames.
bool isComposedByWindowManager();

// Returns the window on which a compositing manager draws the screen, or XCB_NONE. It is above all
// others and covers nothing of the picture.
xcb_window_t overlayWindow();

}  // namespace tintora::platform
