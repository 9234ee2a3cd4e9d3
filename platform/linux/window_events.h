// Follows the top-level windows by the server's events: which ones exist, their order and their
// changes.
#pragma once

#include <xcb/xcb.h>

namespace tintora::platform {

// Reads the stack and follows every change from now on. While the main window is shown, the server
// keeps the windows' pixels apart from the screen's, so covered windows can be read too.
void watchWindows(xcb_window_t ownWindow);

// Stops following the windows.
void forgetWindows();

// Handles one event of the server.
void followEvent(const xcb_generic_event_t& event);

}  // namespace tintora::platform
