// From Qt's events to the program's, and the loop they come in.
#pragma once

#include <xcb/xcb.h>

#include "platform/window.h"

namespace tintora::platform {

// Sets who handles the program's events. Nobody does while it is null.
void setEventHandler(EventHandler handler);

// From now on, passes the window's events to the handler.
void translateEvents(Window* window);

// Tells the program that its session ends, if it has windows: at once, because the process may be
// ended as soon as this returns.
void tellSessionEnds();

// Returns the program's window with an identifier of the X server, or null.
Window* windowOf(xcb_window_t id);

// Passes an event to the program. Returns true if the desktop must not handle it as well.
bool handOver(const Event& event);

}  // namespace tintora::platform
